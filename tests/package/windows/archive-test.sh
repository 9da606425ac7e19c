#!/usr/bin/env bash
# archive-test.sh BUILD SCRATCH VERSION: the archive has the package's name and holds its files and nothing else.
set -eu
. "$(dirname "$0")/../lib.sh"

name=NyServer-$version-win64
rm -rf "$scratch/archive"
must pack cpack --config "$build/CPackConfig.cmake" -G ZIP -B "$scratch/archive"
same "archives" "$name.zip" "$(cd "$scratch/archive" && ls -d -- *.zip)"

mkdir "$scratch/archive/unpacked"
must unpack cmake -E chdir "$scratch/archive/unpacked" cmake -E tar xf "../$name.zip"
same "files" "$(files_of "$prefix" | sed "s|^|$name/|")" "$(files_of "$scratch/archive/unpacked")"
report
