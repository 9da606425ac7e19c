#!/usr/bin/env bash
# install-test.sh BUILD SCRATCH VERSION: what cmake --install puts where.
set -eu
. "$(dirname "$0")/../lib.sh"

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

cd "$root"
same "public headers" "$(public_headers $(grep -rlE --include=*.h '\b(NYSERVER_API|NYBASE_API)\b' NyServer) \
  NyServer/base/mfc/afx*.h | grep -v /posix/)" "$(files_of "$prefix/include")"
expect_no_paths
report
