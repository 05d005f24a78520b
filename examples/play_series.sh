#!/usr/bin/env bash
# Plays a benchmark series over --opt_for_speed on the demo project in DIR with
# advzorv-series, one build per setting 0 to 5 by demo/build_at.sh, and shows
# the chart and the recommendation. ADVZORV_SERIES names the advzorv-series to
# use; by default the one beside ADVZORV.
# Usage: play_series.sh ADVZORV DIR [OPTION...]   (OPTIONs go to advzorv-series)
set -euo pipefail
advzorv=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
dir=$2
shift 2
series=${ADVZORV_SERIES:-$(dirname "$advzorv")/advzorv-series}
demo=$(cd "$(dirname "$0")/demo" && pwd)
mkdir -p "$dir"
cd "$dir"
args=(--option=--opt_for_speed --advice_file=advice.xml --benchmarks_file=perf_results.xml
      --xml_link_info=link_info.xml --linker_options_file=options.cmd "$@"
      -- "$demo/build_at.sh" "{value}")
echo "+ advzorv-series ${args[*]}"
"$series" --advzorv="$advzorv" "${args[@]}"
