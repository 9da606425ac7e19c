#!/usr/bin/env bash
# install-test.sh BUILD SCRATCH VERSION: what cmake --install puts where.
set -eu
. "$(dirname "$0")/lib.sh"

rm -rf "$prefix"
must install cmake --install "$build" --prefix "$prefix"

same "files in bin" "NyBaseDll.dll
NyServerDll.dll
libgcc_s_seh-1.dll
libstdc++-6.dll
libwinpthread-1.dll
nycentral.exe
nyctl.exe
nymonitor.exe" "$(files_of "$prefix/bin")"

same "files in lib" "cmake/NyServer/NyServerConfig.cmake
cmake/NyServer/NyServerConfigVersion.cmake
cmake/NyServer/NyServerTargets-relwithdebinfo.cmake
cmake/NyServer/NyServerTargets.cmake
libNyBaseDll.dll.a
libNyServerDll.dll.a" "$(files_of "$prefix/lib")"

same "files in docs" "$({ files_of "$root/docs"; files_of "$root/examples" | sed 's|^|examples/|'; } | LC_ALL=C sort)" \
  "$(files_of "$prefix/docs")"
same "files in tools" "$(files_of "$root/tools/wireshark" | sed 's|^|wireshark/|')" "$(files_of "$prefix/tools")"
same "folders" $'bin\ndocs\ninclude\nlib\ntools' "$(ls "$prefix")"
same "folders in include" "NyServer" "$(ls "$prefix/include")"

# target_of FILE NAME: the header that FILE means by NAME; nothing when it is a header from outside.
target_of() {
  local candidate
  for candidate in "$2" "${1%/*}/$2" "NyServer/base/mfc/$2" "NyServer/base/qo/$2"; do
    [ ! -e "$root/$candidate" ] || { echo "$candidate"; return; }
  done
}

# public_headers: those with an exported name, those with a name of the class library's own, and what these include.
declare -A public
add_header() {
  local included target
  [ -z "${public[$1]-}" ] || return 0
  public[$1]=yes
  for included in $(sed -nE 's/^ *# *include ["<]([^">]+)[">].*/\1/p' "$root/$1"); do
    target=$(target_of "$1" "$included")
    [ -z "$target" ] || add_header "$target"
  done
}
cd "$root"
for header in $(grep -rlE --include=*.h '\b(NYSERVER_API|NYBASE_API)\b' NyServer) NyServer/base/mfc/afx*.h; do
  add_header "$header"
done
same "public headers" "$(printf '%s\n' "${!public[@]}" | LC_ALL=C sort)" "$(files_of "$prefix/include")"

# Nobody else has these folders.
for folder in "$root" "$HOME"; do
  found=$(grep -rlaF -e "$folder/" "$prefix" || true)
  [ -z "$found" ] || fail "the folder $folder is named in: $found"
done
report
