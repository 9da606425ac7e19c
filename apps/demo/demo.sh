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

# says NAME COMMAND: sends one line to the user's shell and shows the reply, which is in $reply afterwards.
says() {
  begins "$@"
  hears "$1"
}

# begins NAME COMMAND: sends one line to the user's shell.
begins() {
  printf '%s> nyctl %s\n' "$1" "${*:2}"
  printf '%s\necho =\n' "${*:2}" >&"${shells[$1]}"
}

# hears NAME [TEXT]: shows the reply up to the mark, or up to the line with the text; it is in $reply afterwards.
hears() {
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

# expect TEXT: fails unless the text is in $reply.
expect() { [[ $reply == *"$1"* ]] || fail "this should say \"$1\""; }
expect_not() { [[ $reply != *"$1"* ]] || fail "this should not say \"$1\""; }

# starts NAME DESCRIPTOR: a shell of that user, on one connection, fed through the descriptor.
declare -A shells replies
starts() {
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

starts anna
starts bob

heading "Anna asks whether it is alive, and both register"
says anna ping
expect 'alive: true'
says anna register
expect 'user: anna'
says bob register
expect 'user: bob'
says anna users
expect 'anna  1'
expect 'bob   2'

heading "Bob watches; Anna takes a lock that excludes others, and Bob is notified"
begins bob watch --count 1 --timeout 60
hears bob 'listening on port'
says anna lock part/42 --mode 0x18
expect 'granted: true'
echo "bob, who watches:"
hears bob
expect '50 a lock was granted  NySeLock: part/42, held by session 1 (exclude1+exclude2)'

heading "Bob is refused what Anna has locked"
says bob lock part/42 --mode 0x01
expect 'granted: false'
says bob locks
expect 'exclude1+exclude2'

heading "Anna releases it; Bob asks again and gets it"
says anna unlock part/42
says bob lock part/42 --mode 0x01
expect 'granted: true'
says anna holders part/42
expect bob

heading "Both open the same connection, and both close it; its id is reused"
says anna "open 'Server=a;Db=b'"
expect 'id: 0'
says bob "open 'server=A;db=B'"
expect 'id: 0'
says anna openers 0
expect anna
expect bob
says anna close 0
says bob close 0
says bob connections
expect_not Server
says bob "open 'Server=c;Db=d'"
expect 'id: 0'

heading "The server information"
says anna info
expect 'COLLABORATIVE SERVER INFORMATION'

heading "Bob disconnects; his locks and connections are released"
exec 4>&-
has_left() { [[ $(run nyctl --server "$server" --json users) != *bob* ]]; }
await has_left
says anna users
expect_not bob
says anna locks
expect_not part/42
says anna connections
expect_not Server

heading "The server stops"
exec 3>&-
stop "$central"
central=
sed -n 's/^stopping/    stopping/p' "$work/central.log"
grep -q '^stopping' "$work/central.log" || fail "the server did not stop by itself"
echo
echo "The demo has ended."
