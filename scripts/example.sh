#!/usr/bin/env bash
# Installs what is missing, builds the tool and runs it, as the IDE would after a
# build, on the bundled demo project; then plays a benchmark series over
# --opt_for_speed and shows both documents with advzorv-report, in the terminal
# and as an HTML page. The runs work on a copy in build/example-run.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
"$root/scripts/setup.sh"
"$root/scripts/build.sh"

run_dir=$build_dir/example-run
rm -rf "$run_dir"
cp -r "$root/examples/demo" "$run_dir"
cd "$run_dir"
args=(--advice_file=advice.xml --benchmarks_file=perf_results.xml
      --xml_link_info=link_info.xml --linker_options_file=options.cmd)
echo "+ advzorv ${args[*]}   (in $run_dir)"
status=0
"$build_dir/ADVICE_PERF/advzorv" "${args[@]}" || status=$?
echo "advzorv exited with status $status"
[ "$status" -eq 0 ] || exit "$status"

echo
echo "Benchmark series over --opt_for_speed, as the IDE plays it:"
"$root/examples/play_series.sh" "$build_dir/ADVICE_PERF/advzorv" "$run_dir"

report=$build_dir/programs/report/advzorv-report
echo
echo "+ advzorv-report advice.xml perf_results.xml"
"$report" advice.xml perf_results.xml
"$report" --html report.html advice.xml perf_results.xml
echo
echo "The HTML report is in $run_dir/report.html"
