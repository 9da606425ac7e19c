#!/usr/bin/env bash
# install-test.sh BUILD SCRATCH VERSION: what cmake --install puts where.
set -eu
. "$(dirname "$0")/../lib.sh"

rm -rf "$prefix"
must install cmake --install "$build" --prefix "$prefix"

same "folders" $'bin\ninclude\nlib\nshare' "$(ls "$prefix")"
same "files in bin" nyctl "$(files_of "$prefix/bin")"
same "manual pages and completions" $'bash-completion/completions/nyctl\nman/man1/nyctl.1' \
  "$(files_of "$prefix/share" | grep -v '^doc/')"
same "files in lib" "cmake/NyServer/NyServerConfig.cmake
cmake/NyServer/NyServerConfigVersion.cmake
cmake/NyServer/NyServerTargets-relwithdebinfo.cmake
cmake/NyServer/NyServerTargets.cmake
libnyserver.a
libnyserver.so.$version" "$(files_of "$prefix/lib")"
same "links in lib" "libnyserver.so
libnyserver.so.${version%%.*}" "$(cd "$prefix/lib" && find . -type l -printf '%P\n' | LC_ALL=C sort)"
same "documents" "$({ files_of "$root/docs"; files_of "$root/examples" | sed 's|^|examples/|'
  files_of "$root/tools/wireshark" | sed 's|^|wireshark/|'; } | LC_ALL=C sort)" "$(files_of "$prefix/share/doc/NyServer")"
same "folders in include" "NyServer" "$(ls "$prefix/include")"

# Those of the Windows package, without what is about windows and modules, and the online client.
windows_only='/(CWnd|afxwin|afxdllx|Qo(Ui.*|WaitCursor)|NyServerNotification|NyFctWebService)\.h$'
cd "$root"
same "public headers" "$(public_headers $({ grep -rlE --include=*.h '\b(NYSERVER_API|NYBASE_API)\b' NyServer
  ls NyServer/base/mfc/afx*.h; } | grep -vE "$windows_only") | grep -v /WindowsPrelude.h)" "$(files_of "$prefix/include")"
expect_no_paths
report
