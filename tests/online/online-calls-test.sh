#!/usr/bin/env bash
# online-calls-test.sh ONLINE_TEST: with which arguments, and in which order, the online service client calls WinINet, as
# Wine's trace of WinINet tells.
set -eu -o pipefail
online_test=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
failures=0

# calls CASE: the calls of one case, a line each, with P for a port and without the addresses of objects.
calls() {
  WINEDEBUG=+wininet "$root/tools/run-in-wine" "$online_test" --gtest_filter="$1" 2>&1 | tr -d '\r' |
    sed -nE 's/^[0-9a-f]+:trace:wininet:(InternetOpenW \(.*|InternetOpenUrlW \(.*|InternetQueryDataAvailable|InternetReadFile [0-9A-F]+|InternetCloseHandle .*)/\1/p' |
    sed -E 's/127\.0\.0\.1:[0-9]+/127.0.0.1:P/; s/0{8,}([0-9A-F])\b/#\1/g; s/ \(#[0-9] .*|(ReadFile #[0-9]).*/\1/'
}

# expect CASE: the case makes the calls on standard input and no others.
expect() {
  diff -u --label expected --label "$1" - <(calls "$1") || failures=$((failures + 1))
}

# A ping, then a version.
expect 'OnlineService.ReturnsToProductionAndClearsTheCustomAddress' << 'END'
InternetOpenW (L"quillmark", 0, L"", L"", 0)
InternetOpenUrlW (#1, L"http://127.0.0.1:P/_Utilities/Ping.aspx", (null), 00000000, 84000000, 00000000)
InternetCloseHandle #3
InternetCloseHandle #1
InternetOpenW (L"quillmark", 0, L"", L"", 0)
InternetOpenUrlW (#1, L"http://127.0.0.1:P/", (null), 00000000, 84000000, 00000000)
InternetOpenW (L"quillmark", 1, (null), (null), 0)
InternetOpenUrlW (#4, L"http://127.0.0.1:P/_Utilities/Version.aspx?sid=42", (null), 00000000, 20000000, 00000000)
InternetQueryDataAvailable
InternetReadFile #6
InternetCloseHandle #6
InternetCloseHandle #4
InternetCloseHandle #3
InternetCloseHandle #1
END
[ $failures -eq 0 ] || exit 1
echo "all as expected"
