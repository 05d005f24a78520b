#!/usr/bin/env bash
# Installs what building and testing need, skipping whatever is already present.
# Usage: setup.sh [example]   (example: only what scripts/example.sh needs)
set -euo pipefail
what=${1:-all}

missing=()
have_cmd()  { command -v "$1" >/dev/null 2>&1; }
have_file() { [ -e "$1" ]; }

have_cmd g++     || missing+=(g++)
have_cmd make    || missing+=(make)
have_cmd cmake   || missing+=(cmake)
have_cmd python3 || missing+=(python3)
have_file /usr/include/boost/property_tree/ptree.hpp || missing+=(libboost-dev)
have_file /usr/include/mimalloc.h                    || missing+=(libmimalloc-dev)
# command lines and JSON of the programs beside advzorv
have_file /usr/include/CLI/CLI.hpp                   || missing+=(libcli11-dev)
have_file /usr/include/nlohmann/json.hpp             || missing+=(nlohmann-json3-dev)
# The rest serves the tests, benchmarks and fuzzing.
if [ "$what" != example ]; then
have_file /usr/include/gtest/gtest.h                 || missing+=(libgtest-dev)
have_file /usr/include/gmock/gmock.h                 || missing+=(libgmock-dev)
have_file /usr/include/benchmark/benchmark.h         || missing+=(libbenchmark-dev)
have_cmd xmllint  || missing+=(libxml2-utils)  # validates the documents against their schemas
have_cmd strace   || missing+=(strace)         # fails a run's system calls in turn
have_cmd chromium || missing+=(chromium)       # the report's HTML page is checked in a browser
have_cmd node     || missing+=(nodejs)  # drives Chromium for the page's accessibility checks
have_cmd npm      || missing+=(npm)
have_cmd dpkg-shlibdeps || missing+=(dpkg-dev)  # cpack -G DEB
have_cmd lintian  || missing+=(lintian)         # checks the Debian package as Debian does
have_file /usr/include/libxml2/libxml/parser.h       || missing+=(libxml2-dev)
# the JSON Schema check
python3 -c 'import jsonschema' 2>/dev/null           || missing+=(python3-jsonschema)
# clang and its libFuzzer runtime, for scripts/fuzz.sh
have_cmd clang++ || missing+=(clang)
dpkg -s libclang-rt-14-dev >/dev/null 2>&1 || missing+=(libclang-rt-14-dev)
# pugixml, the anchor bench/link_file_bench.py times the tool against
have_file /usr/include/pugixml.hpp || missing+=(libpugixml-dev)
# scripts/mutate.py rebuilds with ninja and puts lines back through ccache
have_cmd ninja  || missing+=(ninja-build)
have_cmd ccache || missing+=(ccache)
fi

if [ ${#missing[@]} -gt 0 ]; then
    echo "setup: installing ${missing[*]}"
    sudo_cmd=()
    [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
    export DEBIAN_FRONTEND=noninteractive
    "${sudo_cmd[@]}" apt-get update -qq
    "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# axe-core and the Chromium driver of the page checks, at the versions that
# tests/report/package-lock.json pins, into tests/report/node_modules; again
# whenever the lock file is newer than what is installed. No browser is
# downloaded: the checks use the system's Chromium.
report_tests="$(cd "$(dirname "$0")/.." && pwd)/tests/report"
if [ "$what" != example ] &&
   [ "$report_tests/package-lock.json" -nt "$report_tests/node_modules/.package-lock.json" ]; then
    echo "setup: installing the page checks' npm packages into $report_tests/node_modules"
    (cd "$report_tests" && PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --no-audit --no-fund --silent)
fi
