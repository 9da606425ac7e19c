#!/usr/bin/env bash
# demo.sh: demonstrates a central server with two users. Stops what it starts.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/lib.sh"
bin=$root/build/windows/bin
work=$(mktemp -d)
central=

# With exec, so that the process id of a background job is that of the program.
run() { exec "$root/tools/run-in-wine" "$bin/$1.exe" "${@:2}"; }

# stop PID: as Ctrl+C does, and waits; by force if that has no effect.
stop() {
  kill -INT "$1" 2> /dev/null || return 0
  await gone "$1" || kill -KILL "$1"
  wait "$1"
}

cleanup() {
  exec 3>&- 4>&-  # a shell ends with its input
  [ -z "$central" ] || stop "$central" || true
  rm -rf "$work"
}
trap cleanup EXIT

heading() { printf '\n* %s\n' "$*"; }

# request NAME COMMAND: sends one line to the user's shell and shows the reply, which is in $reply afterwards.
request() {
  send "$@"
  show_reply "$1"
}

# send NAME COMMAND: sends one line to the user's shell.
send() {
  printf '%s> nyctl %s\n' "$1" "${*:2}"
  printf '%s\necho =\n' "${*:2}" >&"${shells[$1]}"
}

# show_reply NAME [TEXT]: shows the reply up to the mark, or up to the line with the text; it is in $reply afterwards.
show_reply() {
  local line
  reply=
  while IFS= read -r -t 60 line <&"${replies[$1]}"; do
    line=${line%$'\r'}
    [ "$line" != = ] || return 0
    printf '    %s\n' "$line"
    reply+=$line$'\n'
    [ $# -eq 1 ] || [[ $line != *"$2"* ]] || return 0
  done
  fail "$1 gets no reply"
}

fail() {
  echo "demo: $*" >&2
  exit 1
}

# expect TEXT: fails unless the text is in $reply; expect_not TEXT: fails if it is.
expect() { [[ $reply == *"$1"* ]] || fail "the reply has no \"$1\""; }
expect_not() { [[ $reply != *"$1"* ]] || fail "the reply has \"$1\""; }

# start_shell NAME: starts a shell of that user, on one connection.
declare -A shells replies
start_shell() {
  local name=$1
  mkfifo "$work/$name.in" "$work/$name.out"
  run nyctl --server "$server" --user "$name" shell < "$work/$name.in" > "$work/$name.out" 2>&1 &
  case $name in
    anna) exec 3> "$work/$name.in" 5< "$work/$name.out"; shells[$name]=3 replies[$name]=5 ;;
    bob) exec 4> "$work/$name.in" 6< "$work/$name.out"; shells[$name]=4 replies[$name]=6 ;;
  esac
}

heading "A central server starts on a free port"
set -m  # a background program ignores Ctrl+C unless it is a job of its own
run nycentral --ports "$(free_row)" --port-file "$work/port" > "$work/central.log" 2>&1 &
central=$!
set +m
await test -s "$work/port" || { cat "$work/central.log" >&2; exit 1; }
server=127.0.0.1:$(tr -d '\r\n' < "$work/port")
sed 's/^/    /' "$work/central.log"

start_shell anna
start_shell bob

heading "Anna checks that the server is alive, and both register"
request anna ping
expect 'alive: true'
request anna register
expect 'user: anna'
request bob register
expect 'user: bob'
request anna users
expect 'anna  1'
expect 'bob   2'

heading "Bob watches; Anna takes a lock that refuses later requests, and Bob is notified"
send bob watch --count 1 --timeout 60
show_reply bob 'listening on port'
request anna lock part/42 --mode 0x18
expect 'granted: true'
echo "bob, who watches:"
show_reply bob
expect '50 a lock was granted  NySeLock: part/42, held by session 1 (exclude1+exclude2)'

heading "Bob requests it and is refused"
request bob lock part/42 --mode 0x01
expect 'granted: false'
request bob locks
expect 'exclude1+exclude2'

heading "Anna releases it; Bob requests it again, and it is granted"
request anna unlock part/42
request bob lock part/42 --mode 0x01
expect 'granted: true'
request anna holders part/42
expect bob

heading "Both open the same connection, and both close it; its id is reused"
request anna "open 'Server=a;Db=b'"
expect 'id: 0'
request bob "open 'server=A;db=B'"
expect 'id: 0'
request anna openers 0
expect anna
expect bob
request anna close 0
request bob close 0
request bob connections
expect_not Server
request bob "open 'Server=c;Db=d'"
expect 'id: 0'

heading "The server information"
request anna info
expect 'COLLABORATIVE SERVER INFORMATION'

heading "Bob disconnects; his locks and connections are released"
exec 4>&-
has_left() { [[ $(run nyctl --server "$server" --json users) != *bob* ]]; }
await has_left
request anna users
expect_not bob
request anna locks
expect_not part/42
request anna connections
expect_not Server

heading "The server stops"
exec 3>&-
stop "$central"
central=
sed -n 's/^stopping/    stopping/p' "$work/central.log"
grep -q '^stopping' "$work/central.log" || fail "the server did not stop by itself"
echo
echo "The demo has ended."
