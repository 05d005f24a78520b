#!/usr/bin/env bash
# Installs what the example needs if it is missing, builds the three programs
# (not the tests, fuzzers or benchmarks) and runs the tool, as the IDE would
# after a build, on the bundled demo project; then plays a benchmark series
# over --opt_for_speed through advzorv-series, which shows both documents as
# advzorv-report does and writes the HTML page. The runs work on a copy in
# build/example-run.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
"$root/scripts/setup.sh" example
# A build directory made here leaves the tests out, so configuring needs
# nothing that only they use; one that scripts/test.sh made keeps them.
tests=()
[ -f "$build_dir/CMakeCache.txt" ] || tests=(-DADVZORV_BUILD_TESTS=OFF)
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} "${tests[@]}" >/dev/null
cmake --build "$build_dir" -j "$(nproc)" --target advzorv advzorv-report advzorv-series

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
echo "Benchmark series over --opt_for_speed, one build per setting by demo/build_at.sh:"
ADVZORV_SERIES=$build_dir/programs/series/advzorv-series \
    "$root/examples/play_series.sh" "$build_dir/ADVICE_PERF/advzorv" "$run_dir" --html=report.html
echo
echo "The HTML report is in $run_dir/report.html"
