#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite, then
# builds it again into build-asan/ (or $ASAN_BUILD_DIR) under AddressSanitizer, with
# leak detection, and UndefinedBehaviorSanitizer and runs it there too.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh"
(cd "${BUILD_DIR:-$root/build}" && ctest --output-on-failure -j "$(nproc)")

asan_dir=${ASAN_BUILD_DIR:-$root/build-asan}
cmake -S "$root" -B "$asan_dir" -DCMAKE_BUILD_TYPE=Debug -DADVZORV_SANITIZE=ON >/dev/null
cmake --build "$asan_dir" -j "$(nproc)"
cd "$asan_dir"
# Allocations too large to be served return null, as they do without the sanitizer.
ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 ctest --output-on-failure -j "$(nproc)"
