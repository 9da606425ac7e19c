#!/usr/bin/env bash
# nycentral-test.sh NYCENTRAL: the central server from outside: its options, and its end on a client's request.
set -eu
nycentral=$1
. "$(dirname "$0")/lib.sh"

# refuses OPTION VALUE: no server starts so.
refuses() {
  local status=0
  "$root/tools/run-in-wine" "$nycentral" "$1" "$2" > "$work/refused.log" 2>&1 || status=$?
  [ $status -eq 2 ] || fail "$1 $2 ended with $status: $(cat "$work/refused.log")"
}
for range in 200-100 0-10 1-65536 100 one-two ''; do refuses --ports "$range"; done
for count in 0 1001 many ''; do refuses --max-sessions "$count"; done
for seconds in -1 86401 often ''; do refuses --probe-seconds "$seconds"; done

start_central "$nycentral" --ports 42100-42100

# another_port: asks for a port; a 4-byte number comes back.
another_port() {
  printf '\x47\0\0\0\0\0\0\0' >&3
  head -c 4 <&3 | od -An -td4 | tr -d ' '
}
exec 3<> "/dev/tcp/127.0.0.1/$port"
[ "$(another_port)" = 42100 ] || fail "the first port should be that of the range"
[ "$(another_port)" = -1 ] || fail "there should be one port only"

printf '\x4d\0\0\0\0\0\0\0' >&3
expect_stopped
exec 3>&-

# The port is free again; another address keeps what is left of the connections apart.
start_central "$nycentral" --bind 127.0.0.2 --port "$port"
grep -q "^listening on 127.0.0.2:$port" "$work/central.log" || fail "nycentral says: $(cat "$work/central.log")"
! : 2> /dev/null < "/dev/tcp/127.0.0.1/$port" || fail 'nobody should listen on 127.0.0.1'
exec 3<> "/dev/tcp/127.0.0.2/$port"
printf '\x4d\0\0\0\0\0\0\0' >&3
expect_stopped
report
