#!/usr/bin/env bash
# Configures and builds the whole project into build/ (or $BUILD_DIR).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} >/dev/null
cmake --build "$build_dir" -j "$(nproc)"
