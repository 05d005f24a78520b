#!/usr/bin/env bash
# Fuzzes one target, scripts/fuzz.sh TARGET SECONDS, or each target in turn,
# scripts/fuzz.sh --all SECONDS. Builds the libFuzzer targets with clang into
# build-fuzz/ (or $FUZZ_BUILD_DIR) and runs each for SECONDS on its committed
# corpus; new inputs that add coverage are merged, minimised, into
# tests/fuzz/corpus/TARGET, and a crasher is left in the build directory. The
# loop goes on past a failing target, prints each target's closing line and
# fails if any target did. Without arguments, lists the targets one per line.
# FUZZ_FLAGS adds libFuzzer flags (e.g. "-fork=1 -ignore_crashes=1" to go on
# past crashes).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
# One target per harness source tests/fuzz/TARGET_fuzz.cpp.
targets=$(cd "$root/tests/fuzz" && ls ./*_fuzz.cpp | sed 's|^\./||;s|_fuzz\.cpp$||')
if [ $# -eq 0 ]; then
    echo "$targets"
    exit 0
fi
seconds=${2:?usage: scripts/fuzz.sh TARGET|--all SECONDS}
build_dir=${FUZZ_BUILD_DIR:-$root/build-fuzz}

configure() {
    CC=clang CXX=clang++ cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DADVZORV_FUZZ=ON >/dev/null
}

if [ "$1" = --all ]; then
    configure
    # shellcheck disable=SC2046  # one word per target
    cmake --build "$build_dir" -j 2 --target $(sed 's/^/fuzz_/' <<<"$targets")
    failed=()
    for target in $targets; do
        log=$build_dir/fuzz-$target.log
        echo "fuzz: $target for $seconds s (log $log)"
        FUZZ_BUILT=1 bash "$0" "$target" "$seconds" >"$log" 2>&1 || failed+=("$target")
        grep -E '^Done [0-9]+ runs|^(==[0-9]+==)?ERROR|^SUMMARY' "$log" | sed "s/^/  /" || true
    done
    if [ ${#failed[@]} -gt 0 ]; then
        echo "fuzz: failed: ${failed[*]}" >&2
        exit 1
    fi
    exit 0
fi

target=$1
grep -qx "$target" <<<"$targets" || { echo "fuzz: no target $target" >&2; exit 1; }
if [ -z "${FUZZ_BUILT:-}" ]; then
    configure
    cmake --build "$build_dir" -j 2 --target "fuzz_$target"
fi

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
max_len=4096
seeds=()
if [ "$target" = link_file_differential ]; then
    # Real-shaped link files: small generated ones.
    max_len=16384
    seeds=("$build_dir/link-seeds")
    mkdir -p "${seeds[0]}"
    for seed in 1 2 3 4 5 6 7 8; do
        python3 "$root/bench/gen_link_info.py" "0.00$seed" "${seeds[0]}/gen-$seed.xml" "$seed"
    done
fi
flags=(-max_len=$max_len -timeout=10 -rss_limit_mb=2048 -close_fd_mask=3 -print_final_stats=1)
cd "$build_dir/tests/fuzz"
status=0
# shellcheck disable=SC2086  # FUZZ_FLAGS holds several words
nice "./fuzz_$target" "${flags[@]}" "${dict[@]}" ${FUZZ_FLAGS:-} -max_total_time="$seconds" \
    "$work" "$corpus" "${seeds[@]}" || status=$?
# Only inputs that reach new edges go into the committed corpus, the smallest first.
nice "./fuzz_$target" "${flags[@]}" -use_counters=0 -merge=1 "$corpus" "$work" "${seeds[@]}"
exit "$status"
