#!/usr/bin/env bash
# nycentral-test.sh NYCENTRAL: the central server from outside: its options, and its end on a client's request.
set -eu
nycentral=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
failures=0
central=

cleanup() {
  [ -z "$central" ] || kill -INT "$central" 2> /dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# refuses RANGE: no server starts with these ports.
refuses() {
  local status=0
  "$root/tools/run-in-wine" "$nycentral" --ports "$1" > "$work/refused.log" 2>&1 || status=$?
  [ $status -eq 2 ] || fail "--ports $1 ended with $status: $(cat "$work/refused.log")"
}
for range in 200-100 0-10 1-65536 100 one-two ''; do refuses "$range"; done

set -m  # a background program ignores Ctrl+C unless it is a job of its own
"$root/tools/run-in-wine" "$nycentral" --port-file "$work/port" --ports 42100-42100 > "$work/central.log" 2>&1 &
central=$!
set +m
for _ in $(seq 200); do
  [ ! -s "$work/port" ] || break
  sleep 0.1
done
port=$(tr -d '\r\n' < "$work/port")

# another_port: asks for a port; a 4-byte number comes back.
another_port() {
  printf '\x47\0\0\0\0\0\0\0' >&3
  head -c 4 <&3 | od -An -td4 | tr -d ' '
}
exec 3<> "/dev/tcp/127.0.0.1/$port"
[ "$(another_port)" = 42100 ] || fail "the first port should be that of the range"
[ "$(another_port)" = -1 ] || fail "there should be one port only"

printf '\x4d\0\0\0\0\0\0\0' >&3
for _ in $(seq 100); do
  kill -0 "$central" 2> /dev/null || break
  sleep 0.1
done
stopping=$central
kill -0 "$stopping" 2> /dev/null && fail "the server goes on after the request to shut down"
central=
wait "$stopping" || fail "nycentral ended with $?"
grep -q '^stopping' "$work/central.log" || fail "nycentral did not say that it stops"

[ $failures -eq 0 ] || exit 1
echo "all as expected"
