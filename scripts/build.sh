#!/usr/bin/env bash
# Configures and builds the whole project with its tests into build/ (or $BUILD_DIR).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
# Tests on, also in a build directory that scripts/example.sh made without them.
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} \
      -DADVZORV_BUILD_TESTS=ON >/dev/null
cmake --build "$build_dir" -j "$(nproc)"
