#!/usr/bin/env bash
# Installs what building and testing need, skipping whatever is already present.
set -euo pipefail

missing=()
have_cmd()  { command -v "$1" >/dev/null 2>&1; }
have_file() { [ -e "$1" ]; }

have_cmd g++     || missing+=(g++)
have_cmd make    || missing+=(make)
have_cmd cmake   || missing+=(cmake)
have_cmd python3 || missing+=(python3)
have_file /usr/include/boost/property_tree/ptree.hpp || missing+=(libboost-dev)
have_file /usr/include/gtest/gtest.h                 || missing+=(libgtest-dev)
have_file /usr/include/gmock/gmock.h                 || missing+=(libgmock-dev)
have_file /usr/include/benchmark/benchmark.h         || missing+=(libbenchmark-dev)
have_file /usr/include/mimalloc.h                    || missing+=(libmimalloc-dev)
have_cmd xmllint  || missing+=(libxml2-utils)  # validates the documents against their schemas
have_cmd chromium || missing+=(chromium)       # the report's HTML page is checked in a browser
have_cmd dpkg-shlibdeps || missing+=(dpkg-dev)  # cpack -G DEB
have_file /usr/include/libxml2/libxml/parser.h       || missing+=(libxml2-dev)
# clang and its libFuzzer runtime, for scripts/fuzz.sh
have_cmd clang++ || missing+=(clang)
dpkg -s libclang-rt-14-dev >/dev/null 2>&1 || missing+=(libclang-rt-14-dev)
# scripts/mutate.py rebuilds with ninja and puts lines back through ccache
have_cmd ninja  || missing+=(ninja-build)
have_cmd ccache || missing+=(ccache)

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "setup: installing ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
