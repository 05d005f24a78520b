#!/bin/sh
# A build for the series tests. In the current directory it writes the command
# file options.cmd and link information linked now whose code size grows with
# VALUE ("off" is the smallest), unless the environment names VALUE for
# another outcome:
#   FAKE_FAIL     prints a line and exits with status 2
#   FAKE_STALE    leaves the link file as it was
#   FAKE_OLD      writes link information linked at 0x10
#   FAKE_GARBAGE  writes a link file that isn't XML
#   FAKE_EMPTY    writes link information with nothing to count
#   FAKE_RED      links with an error
#   FAKE_SLEEP    first writes its process id to fake_build.pid and sleeps
# FAKE_OPTIONS, when set, stands in options.cmd for the setting of the build.
# Each run appends its arguments and the ADVZORV_ variables to fake_build.record.
# Usage: fake_build.sh VALUE [WORD...]
value=$1
echo "$*|$ADVZORV_VALUE|$ADVZORV_OPTION|$ADVZORV_SETTING" >> fake_build.record
if [ "$value" = "$FAKE_SLEEP" ]; then
    echo $$ > fake_build.pid
    sleep 60
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
case $value in
    off) size=$(printf '0x%x' 20000) ;;
    *) size=$(printf '0x%x' $((21000 + 1000 * value))) ;;
esac
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
