#!/usr/bin/env bash
# slow-link-test.sh SLOW_LINK: a listener behind a link of 400 kbit/s, whose packets are of at most 1,500 bytes, misses none of
# 2,000 notifications. The link is between two network namespaces of this test's own, which go with it. Ends with 77 when this
# user may not make them.
set -eu
. "$(dirname "$0")/../../../tools/lib.sh"
slow_link=$1
count=2000

skip() {
  echo "skipped: $*"
  exit 77
}

if [ -z "${NY_SLOW_LINK_INSIDE-}" ]; then
  for tool in ip tc unshare nsenter; do
    command -v $tool > /dev/null || skip "$tool is not there"
  done
  unshare --net true 2> /dev/null || skip "making a network namespace needs root"
  NY_SLOW_LINK_INSIDE=1 exec unshare --net "$0" "$@"
fi

work=$(mktemp -d)
far=
listener=
finish() {
  [ -z "$listener" ] || kill "$listener" 2> /dev/null || true
  [ -z "$far" ] || kill "$far" 2> /dev/null || true
  rm -rf "$work"
}
trap finish EXIT

# The far end's namespace lives as long as a process in it.
unshare --net sleep 120 &
far=$!
has_its_own_network() {
  [ "$(readlink /proc/$1/ns/net)" != "$(readlink /proc/$$/ns/net)" ]
}
await has_its_own_network $far

ip link add near mtu 1500 type veth peer name far mtu 1500 netns $far || skip "this system has no pairs of network devices"
ip address add 10.77.0.1/24 dev near
ip link set near up
nsenter --net --target $far ip address add 10.77.0.2/24 dev far
nsenter --net --target $far ip link set far up
# Of the size of one packet: larger ones are taken apart.
nsenter --net --target $far tc qdisc add dev far root tbf rate 400kbit burst 1600 limit 64kb ||
  skip "this system cannot slow a device down"

"$slow_link" listen $count > "$work/said" &
listener=$!
await test -s "$work/said" || {
  echo "FAILED: the listener did not say its port"
  exit 1
}
status=0
nsenter --net --target $far timeout 50 "$slow_link" send 10.77.0.1 "$(head -n 1 "$work/said")" $count || {
  echo "FAILED: the probe after the notifications was not answered"
  status=1
}
wait "$listener" || status=1
listener=
tail -n 1 "$work/said"
exit $status
