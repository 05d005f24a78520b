#!/usr/bin/env bash
# Fuzzes one target: scripts/fuzz.sh TARGET SECONDS. Builds the libFuzzer
# targets with clang into build-fuzz/ (or $FUZZ_BUILD_DIR) and runs TARGET for
# SECONDS on its committed corpus; new inputs that add coverage are merged,
# minimised, into tests/fuzz/corpus/TARGET, and a crasher is left in the build
# directory. Without arguments, lists the targets one per line. FUZZ_FLAGS adds
# libFuzzer flags (e.g. "-fork=1 -ignore_crashes=1" to go on past crashes).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
# One target per harness source tests/fuzz/TARGET_fuzz.cpp.
targets=$(cd "$root/tests/fuzz" && ls ./*_fuzz.cpp | sed 's|^\./||;s|_fuzz\.cpp$||')
if [ $# -eq 0 ]; then
    echo "$targets"
    exit 0
fi
target=$1
seconds=${2:?usage: scripts/fuzz.sh TARGET SECONDS}
grep -qx "$target" <<<"$targets" || { echo "fuzz: no target $target" >&2; exit 1; }

build_dir=${FUZZ_BUILD_DIR:-$root/build-fuzz}
CC=clang CXX=clang++ cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DADVZORV_FUZZ=ON >/dev/null
cmake --build "$build_dir" -j 2 --target "fuzz_$target"

corpus=$root/tests/fuzz/corpus/$target
work=$build_dir/corpus-$target
mkdir -p "$work" "$corpus"
dict=()
case $target in
    tool_options)  dict=(-dict="$build_dir/tool_options.dict") ;;
    shell_options) dict=(-dict="$build_dir/shell_options.dict") ;;
esac
if [ ${#dict[@]} -gt 0 ]; then
    table=optobj
    [ "$target" = shell_options ] && table=optobj_shell
    python3 "$root/tools/option_dict.py" "$build_dir/generated" "$table" >"${dict[0]#-dict=}"
fi
# Inputs are kept small: deep nesting and endless words are bounded elsewhere.
flags=(-max_len=4096 -timeout=10 -rss_limit_mb=2048 -close_fd_mask=3 -print_final_stats=1)
cd "$build_dir/tests/fuzz"
status=0
# shellcheck disable=SC2086  # FUZZ_FLAGS holds several words
nice "./fuzz_$target" "${flags[@]}" "${dict[@]}" ${FUZZ_FLAGS:-} -max_total_time="$seconds" \
    "$work" "$corpus" || status=$?
# Only inputs that reach new edges go into the committed corpus, the smallest first.
nice "./fuzz_$target" "${flags[@]}" -use_counters=0 -merge=1 "$corpus" "$work"
exit "$status"
