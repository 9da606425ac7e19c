#!/usr/bin/env bash
# headers-test.sh BUILD SCRATCH VERSION: the public headers compile with the warnings that the library is built with, and
# find_package gives what it says. That each compiles by itself is tested with the package for Linux and by the preset
# strict.
set -eu
. "$(dirname "$0")/../lib.sh"

export CMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-toolchain.cmake"
configure "$(dirname "$0")/consumer" "$scratch/consumer" -D package_version="$version"
must build-consumer cmake --build "$scratch/consumer"
report
