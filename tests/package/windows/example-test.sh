#!/usr/bin/env bash
# example-test.sh BUILD SCRATCH VERSION: the example builds against the installed package as its reader would do it, and
# does what its README says, with the installed programs.
set -eu
. "$(dirname "$0")/../lib.sh"

# In a process of its own: nothing of this script stays in between.
run() { exec "$root/tools/run-in-wine" "$@"; }

# expect_end STATUS TEXT ARGUMENT...: the host with the arguments says the text and ends with the status. It writes into
# a file, since the desktop that a first window brings along keeps its output open for longer than the program lives.
expect_end() {
  local status=$1 text=$2 actual=0
  shift 2
  (run "$scratch/example/host.exe" "$@" > "$work/end.log" 2>&1) || actual=$?
  [ $actual -eq "$status" ] || fail "host $* ended with $actual instead of $status: $(cat "$work/end.log")"
  grep -q "$text" "$work/end.log" || fail "host $* should say \"$text\"; it says: $(cat "$work/end.log")"
}

export CMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-toolchain.cmake"
configure "$root/examples/host" "$scratch/example" -D CMAKE_BUILD_TYPE=Release -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror"
must build-example cmake --build "$scratch/example"

expect_end 2 usage
expect_end 2 usage 127.0.0.1 0 1 1
expect_end 2 usage 127.0.0.1 1 1 many
expect_end 1 'no connection to a central server' 127.0.0.1 1 1 1

start_central "$prefix/bin/nycentral.exe" --ports "$(free_row)"
expect_end 1 'waited long enough' 127.0.0.1 "$port" 1 1
settle 0  # the next host would be told that this one left

run "$scratch/example/host.exe" 127.0.0.1 "$port" 4 60 > "$work/host.log" 2>&1 &
host=$!
trap 'kill "$host" 2> /dev/null || true; cleanup' EXIT
await grep -qs holding "$work/host.log"

# Another user: finds the host's lock taken, and does what the host is to hear of.
said=$(printf 'register\nlock part/1 --mode 0x1B\nlock pärt/2\nunlock pärt/2\n' |
  run "$prefix/bin/nyctl.exe" --server "127.0.0.1:$port" --user Zoë shell) || true
same "grants" $'granted: false\ngranted: true' "$(tr -d '\r' <<< "$said" | grep granted)"

status=0
wait "$host" || status=$?
[ $status -eq 0 ] || fail "the host ended with $status"
same "lines of the host" "$(sed -n '/^holding/,/^```/p' "$root/examples/host/README.md" | grep -v '```' |
  sed 's/Anna/Zoë/; s/part\/2/pärt\/2/')" "$(tr -d '\r' < "$work/host.log")"

settle 0
locks=$(run "$prefix/bin/nyctl.exe" --server "127.0.0.1:$port" locks | tr -d '\r')
same "locks" 'lock  session  user  mode  words' "$locks"

# The small one is told of another user's lock.
run "$scratch/example/small.exe" 127.0.0.1 "$port" > "$work/small.log" 2>&1 &
host=$!
knows_small() { [[ $(run "$prefix/bin/nyctl.exe" --server "127.0.0.1:$port" users) == *Small* ]]; }
await knows_small
settle 1
(run "$prefix/bin/nyctl.exe" --server "127.0.0.1:$port" lock part/3 > /dev/null)
status=0
wait "$host" || status=$?
[ $status -eq 0 ] || fail "the small host ended with $status"
# What has been posted when it asks for the end of its loop is shown too: the end follows it.
same "lines of the small host" $'notification 54\nnotification 50\nnotification 51' \
  "$(head -n 3 "$work/small.log" | tr -d '\r')"

(run "$prefix/bin/nyctl.exe" --server "127.0.0.1:$port" shutdown)
expect_stopped
report
