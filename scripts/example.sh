#!/usr/bin/env bash
# Installs what is missing, builds the tool and runs it, as the IDE would after a
# build, on the bundled demo project. The run works on a copy in build/example-run.
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
for doc in advice.xml perf_results.xml; do
    if [ -f "$doc" ]; then
        echo "--- $doc"
        cat "$doc"
    fi
done
exit "$status"
