#!/bin/sh
# A build for the series tests: writes options.cmd and link_info.xml, linked now, whose code
# size grows with VALUE ("off" the smallest), unless a FAKE_ variable names VALUE:
# FAKE_FAIL exits with status 2, FAKE_STALE leaves the link file, FAKE_OLD links at 0x10,
# FAKE_GARBAGE writes no XML, FAKE_EMPTY nothing to count, FAKE_RED a link error, FAKE_SLEEP
# writes its pid to fake_build.pid and sleeps first, in a child that takes its time to end.
# FAKE_OPTIONS stands in options.cmd for the build's setting. Each run appends its arguments
# and the ADVZORV_ variables to fake_build.record. Usage: fake_build.sh VALUE [WORD...]
value=$1
echo "$*|$ADVZORV_VALUE|$ADVZORV_OPTION|$ADVZORV_SETTING" >> fake_build.record
if [ "$value" = "$FAKE_SLEEP" ]; then
    echo $$ > fake_build.pid
    sh -c 'trap "sleep 0.5; exit 1" TERM INT; sleep 60'  # a child slow to end
fi
if [ "$value" = "$FAKE_FAIL" ]; then
    echo "fake build failed at $value"
    exit 2
fi
[ "$value" = "$FAKE_STALE" ] && exit 0
if [ "$value" = "$FAKE_GARBAGE" ]; then
    echo "link of $value" > link_info.xml
    exit 0
fi
echo "--opt_level=2 ${FAKE_OPTIONS:-$ADVZORV_SETTING}" > options.cmd
[ "$value" = off ] && n=-1 || n=$value
size=$(printf '0x%x' $((21000 + 1000 * n)))
time=$(printf '0x%x' "$(date +%s)")
[ "$value" = "$FAKE_OLD" ] && time=0x10
errors=0
[ "$value" = "$FAKE_RED" ] && errors=1
group="<logical_group id=\"lg-1\"><name>.text</name><size>$size</size><contents><object_component_ref idref=\"oc-1\"/></contents></logical_group>"
[ "$value" = "$FAKE_EMPTY" ] && group=""
cat > link_info.xml <<XML
<?xml version="1.0" encoding="utf-8"?>
<link_info>
  <link_time>$time</link_time>
  <link_errors>$errors</link_errors>
  <object_component_list><object_component id="oc-1"/></object_component_list>
  <logical_group_list>$group</logical_group_list>
</link_info>
XML
