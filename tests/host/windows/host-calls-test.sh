#!/usr/bin/env bash
# host-calls-test.sh HOST_ADDRESS_TEST: the order in which the look-up of "localhost" calls Windows Sockets, as Wine's trace
# of them tells. No result shows it: a host without a name is looked up as the local one.
set -eu -o pipefail
root=$(cd "$(dirname "$0")/../../.." && pwd)

# The first calls of one case, a line each: the look-up makes four.
calls() {
  WINEDEBUG=+winsock "$root/tools/run-in-wine" "$1" --gtest_filter='IpAddressFromHostName.ReturnsTheLocalHostsForLocalhost' 2>&1 |
    sed -nE 's/^[0-9a-f]+:trace:winsock:(gethostname|WSAStartup|gethostbyname|WSACleanup) (name|version|"|decreasing).*/\1/p' |
    awk 'NR <= 4'
}

diff -u --label expected --label "$1" - <(calls "$1") << 'END'
gethostname
WSAStartup
gethostbyname
WSACleanup
END
echo "as expected"
