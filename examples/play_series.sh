#!/usr/bin/env bash
# Plays what the development environment does for a benchmark series over
# --opt_for_speed on the demo project, in DIR: a start event, then one build per
# setting 0 to 5, each with link information generated here (every setting gives
# another code size; the fastest does not fit and links with errors), appended
# to the chart, the last one with the end event.
# Usage: play_series.sh ADVZORV DIR
set -euo pipefail
advzorv=$1
dir=$2
demo=$(cd "$(dirname "$0")/demo" && pwd)
mkdir -p "$dir"
cd "$dir"

text_sizes=(24576 26624 29184 31744 34816 38912)  # bytes of .text per setting
link_errors=(0 0 0 0 0 1)

# The build's options and the linker's report of a build at one setting.
build() {
    local setting=$1
    sed "s/--opt_for_speed=[0-9]*/--opt_for_speed=$setting/" "$demo/options.cmd" > options.cmd
    sed -e "s|<link_time>.*</link_time>|<link_time>$(printf '0x%x' "$(date +%s)")</link_time>|" \
        -e "s|<link_errors>.*</link_errors>|<link_errors>$(printf '0x%x' "${link_errors[$setting]}")</link_errors>|" \
        -e "s|<size>0x1a40</size>|<size>$(printf '0x%x' "${text_sizes[$setting]}")</size>|" \
        "$demo/link_info.xml" > link_info.xml
}

run() {
    echo "+ advzorv $*"
    "$advzorv" --advice_file=advice.xml --benchmarks_file=perf_results.xml \
        --xml_link_info=link_info.xml --linker_options_file=options.cmd \
        --benchmark:option=--opt_for_speed "$@"
}

build 0
run --benchmark:event=start
for setting in 0 1 2 3 4 5; do
    build "$setting"
    event=append
    [ "$setting" -lt 5 ] || event=end
    run --benchmark:event=$event --benchmark:option_value="$setting"
done
