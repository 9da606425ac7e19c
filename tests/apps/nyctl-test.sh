#!/usr/bin/env bash
# nyctl-test.sh NYCENTRAL NYCTL: the two programs from outside: what they print, and with what status they end.
set -eu
nycentral=$1
nyctl=$2
. "$(dirname "$0")/lib.sh"
need_central "$nycentral"

# expect STATUS TEXT ARGUMENT...: nyctl with the arguments ends with the status, and its output holds the text.
expect() {
  local status=$1 text=$2 output actual=0
  shift 2
  # Into a file: what shows a cursor or a window may start Wine's desktop, which would hold a pipe open.
  "$run" "$nyctl" "$@" > "$work/said" 2>&1 || actual=$?
  output=$(tr -d '\r' < "$work/said")
  settle $watchers
  [ $actual -eq "$status" ] || fail "nyctl $* ended with $actual instead of $status: $output"
  said=$output
  expect_also "$text"
}

# expect_also TEXT: what the last command said holds the text.
expect_also() {
  [[ $said == *"$1"* ]] || fail "\"$said\" should hold \"$1\""
}

# expect_own_port: what the last command said begins with one of the server's ports.
expect_own_port() {
  local told
  told=$(sed -n '1s/^port: \([0-9]\{1,5\}\)$/\1/p' <<< "$said")
  ((${told:-0} >= ${ports%-*} && ${told:-0} <= ${ports#*-})) || fail "\"$said\" has none of the server's ports $ports"
}

# expect_said PATTERN: the whole of what the last command said is of that pattern.
expect_said() {
  [[ $said =~ ^$1$ ]] || fail "\"$said\" should be $1"
}

run=$(runner "$nyctl")
watchers=0
ports=$(free_row)
start_central "$nycentral" --ports "$ports"
export NYCTL_SERVER=127.0.0.1:$port

[ "$(tr -d '\r' < "$work/central.log")" = "listening on 127.0.0.1:$port" ] || fail "nycentral says: $(cat "$work/central.log")"

expect 0 $'alive: true\nversion: 1.0\nschema: 2015' ping
expect 0 '{"alive":true,"version":1.0,"schema":2015}' --json ping
expect 0 'user: Anna' --user Anna register
expect 0 '"user":"Anna","session":' --json --user Anna register
expect 0 'user  session  port' users
expect 0 '' --json users
expect 0 'ping' --help

expect 0 'notification    ok' doctor
NYCTL_USER=Carla expect 0 'registration    ok           Carla is session' doctor
expect 3 'connect         FAILED' --server 127.0.0.1:1 doctor
expect 2 'not in range' doctor --timeout 0

expect 2 'subcommand is required'
expect 2 'there is no command loks; the nearest is locks; --help lists the commands' loks
expect 2 'there is no command no-such-command; --help lists the commands' no-such-command
expect 2 'there is no command online pong; the nearest is online ping' online pong
expect 2 'not expected' ping --no-such-option
expect 3 'no reply' --server 127.0.0.1:1 ping
expect 3 'no reply' --server 127.0.0.1:1 register
expect 3 'no reply' --server 127.0.0.1:1 users
expect 2 'nonsense is not HOST:PORT' --server nonsense ping
expect 2 'is not HOST:PORT' --server 127.0.0.1:70000 ping

# All in one shell, since a start takes its time.
expect 0 'Subcommands:' --help
commands=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' <<< "$said" | grep -vx shell)
for command in $commands; do echo "$command --help"; done > "$work/lines"
expect 0 '' shell < "$work/lines"
for command in $commands; do expect_also "Example: nyctl $command"; done
expect 0 'Example: ' shell --help
expect 0 'Example: ' --help
expect 0 $'granted: true\nmode: 0x18\nwords: exclude1+exclude2' lock part/42
expect 0 'mode: 0x05' lock part/42 --mode 0x05
expect 0 $'mode: 0x11\nwords: access1+exclude2' lock part/42 --mode access1+exclude2
expect 0 'mode: 0x1B' lock part/42 --mode exclusive
expect 0 $'mode: 0x00\nwords: none' lock part/42 --mode none
for mode in access3 access1+ +access1 access1,access2 -1 0x1ffffffff; do
  expect 2 "--mode: $mode is not a share mode: 0x01 access1, 0x02 access2, " lock part/42 --mode="$mode"
done
expect 0 '{"lock":"part/42","granted":true,"mode":"0x18","words":"exclude1+exclude2"}' --json lock part/42
expect 0 '' unlock part/42
expect 1 'user  session' holders part/42
expect 0 'lock  session  user  mode  words' locks
expect 0 'id: 0' open 'Server=a;Db=b'
expect 0 '' close 0
expect 1 'user  session' openers 0
expect 0 'id  connection  opens' connections
expect 0 '' port
expect_said 'port: [0-9]+'
expect_own_port
expect 0 '' rename Anna
expect_said ''
expect 0 '' time
expect_said 'time: [0-9]+'
now=$(date +%s)
((${said#time: } > now - 300 && ${said#time: } < now + 300)) || fail "it is $now, and not $said"
expect 0 '' machine
expect_said 'machine: [0-9a-f-]+'
machine=${said#machine: }
expect 0 'COLLABORATIVE SERVER INFORMATION' info
[ "$(wc -l <<< "$said")" -gt 3 ] || fail "info should be a block of lines; it is: $said"
expect 0 '' verify
expect 0 'session' events 3
expect 0 '' send-connection 0 1 text
expect 1 '' send-user nobody text
expect 0 '' send-all text

expect 0 'Example: nyctl online ping' online --help
expect 0 '0 yes, 3 no' online ping --help
expect 0 '1 none or no production service, 3 no reply' online version --help
expect 2 'subcommand is required' online
expect 2 'nonsense is not production, test or an http address' online ping --service nonsense
expect 3 'no reply from the service http://127.0.0.1:1/' online ping --service http://127.0.0.1:1/

# The shell holds one connection: who registers on its first line is a user on its last.
expect_shell() {
  local status=$1 text=$2
  expect "$status" "$text" --user Bob shell < "$work/lines"
}
printf 'register\r\n\n# a comment\nusers\n' > "$work/lines"
expect_shell 0 'Bob  '
printf 'lock a\nlock a --mode 1\nlocks\nholders a\nsend-user Bob hello\n' > "$work/lines"
expect_shell 1 'granted: false'
expect_also 'a     '
printf 'register\nrename Carla\nusers\n' > "$work/lines"
expect_shell 0 'Carla  '
printf 'lock a\nunlock a\nlock a --mode 1\n' > "$work/lines"
expect_shell 0 'mode: 0x01'
printf 'open c\nopeners 0\nconnections\nclose 0\nopeners 0\n' > "$work/lines"
expect_shell 1 '0   c           1'
printf 'register\nsend-all hello\nsend-user Bob hello\nsend-connection 0 1 hello\nverify\n' > "$work/lines"
expect_shell 0 'user: Bob'
printf 'port\ntime\nmachine\ninfo\nevents 1\n' > "$work/lines"
expect_shell 0 'time: '
expect_own_port
for text in "machine: $machine" 'COLLABORATIVE SERVER INFORMATION' 'session '; do expect_also "$text"; done
printf 'no-such-command\nping\n' > "$work/lines"
expect_shell 2 'alive: true'
printf 'echo one  two\nexit\nping\n' > "$work/lines"
expect_shell 0 'one  two'

# The command's status is passed on, and afterwards the lock is free.
PATH=$(dirname "$nyctl"):$PATH
expect 0 'part/7' hold part/7 -- nyctl locks
expect_also '0x1B  access1+access2+exclude1+exclude2'
expect 0 '0x01  access1' hold part/7 --mode access1 -- nyctl locks
expect 1 'user  session' hold part/7 -- nyctl holders part/8
expect 2 'there is no command' hold part/7 -- nyctl no-such-command
expect 2 'HOST:PORT' hold part/7 -- nyctl --server '[a b]' ping
expect 127 'the command no-such-program cannot be started' hold part/7 -- no-such-program
expect 126 'cannot be started' hold part/7 -- "$work/central.log"
expect 1 'user  session' holders part/7
expect 2 'COMMAND is required' hold part/7
expect 2 '-- before COMMAND is required' hold part/7 nyctl locks
expect 2 '-- before COMMAND is required' hold part/7 --wiat 3 -- nyctl locks
expect 3 'no reply' --server 127.0.0.1:1 hold part/7 -- nyctl locks
printf 'hold a -- nyctl locks\n' > "$work/lines"
expect_shell 2 'in the shell, hold is not possible'

# hold ARGUMENT...: Anna holds part/8 in the background, as the process $holder, while a shell runs that reads descriptor
# 6.
hold() {
  rm -f "$work/typed"
  mkfifo "$work/typed"
  set -m
  "$run" "$nyctl" --user Anna hold part/8 -- nyctl shell < "$work/typed" > "$work/held" 2>&1 &
  holder=$!
  set +m
  exec 6> "$work/typed"
  echo 'echo begun' >&6
  watchers=1
  await grep -q begun "$work/held" || fail "nothing runs: $(cat "$work/held")"
}

# expect_released STATUS: the holder ends with the status, and part/8 is free.
expect_released() {
  local actual=0
  await gone "$holder" || { fail "the holder goes on"; kill -KILL "$holder"; }
  wait "$holder" || actual=$?
  exec 6>&-
  watchers=0
  [ $actual -eq "$1" ] || fail "hold ended with $actual instead of $1: $(cat "$work/held")"
}

hold
expect 1 '' hold part/8 -- nyctl ping
expect_said 'nyctl: the lock part/8 is refused'
expect 1 '' hold part/8 --wait 0.3 -- nyctl ping
"$run" "$nyctl" hold part/8 --wait 60 -- nyctl locks > "$work/waited" 2>&1 &
waiter=$!
sleep 0.5
echo exit >&6
expect_released 0
wait "$waiter" || fail "the waiting hold ended with $?: $(cat "$work/waited")"
grep -q 'part/8' "$work/waited" || fail "the waiting hold should show its lock: $(cat "$work/waited")"
settle 0
expect 1 'user  session' holders part/8

# Signals reach the command, and its end releases the lock.
if [ "$run" = env ]; then
  for signal in INT TERM HUP; do
    hold
    kill -$signal "$holder"
    expect_released $((128 + $(kill -l $signal)))
    expect 1 'user  session' holders part/8
  done
  expect 5 '' hold part/7 -- sh -c 'trap "exit 5" TERM; kill -TERM $PPID; while :; do sleep 0.1; done'
  expect 3 '[ -e / ]' hold part/7 -- sh -c 'echo "$1"; exit 3' sh '[ -e / ]'
fi

# watch ARGUMENT...: Bob watches in the background, as the process $watcher, and what he sees comes out of descriptor 5.
watch() {
  rm -f "$work/seen"
  mkfifo "$work/seen"
  set -m
  "$run" "$nyctl" --user Bob "$@" > "$work/seen" 2>&1 &
  watcher=$!
  set +m
  exec 5< "$work/seen"
  watchers=1
  expect_seen 'listening on port'
}

# expect_seen TEXT: the watcher's next line holds the text, and comes while the watcher goes on.
expect_seen() {
  local line=
  IFS= read -r -t 60 line <&5 || fail "the watcher does not say \"$1\""
  [[ $line == *"$1"* ]] || fail "the watcher should say \"$1\"; it says: $line"
}

# expect_watched STATUS: the watcher ends by itself with the status.
expect_watched() {
  local actual=0
  await gone "$watcher" || { fail "the watcher goes on"; kill -KILL "$watcher"; }
  wait "$watcher" || actual=$?
  watchers=0
  settle 0
  [ $actual -eq "$1" ] || fail "the watcher ended with $actual instead of $1"
}

watch watch
expect 0 'granted: true' lock part/42
expect_seen '54 a user joined or registered again  NySeUser: '
expect_seen '50 a lock was granted  NySeLock: part/42, held by session'
expect_seen '51 a lock was released  NySeLock: part/42, held by nobody'
expect_seen '55 a user left  NySeUser: '
expect 0 'Bob' users
kill -INT "$watcher"
expect_watched 0
expect 0 '' users
[[ $said != *Bob* ]] || fail "the watcher is still registered"

watch --json watch --count 2
expect 0 '' send-all 'it is "late"'
expect_seen '"object":{"message":"it is \"late\""}'
kill -0 "$watcher" || fail "one was not all"
expect 0 '' send-all bye
expect_seen '"class":"NySeMessage","object":{"message":"bye"}'
expect_watched 0

expect 4 '' watch --count 1 --timeout 0.2
expect 0 '' watch --timeout 0.2
expect 2 'not in range' watch --count 0
printf 'watch\nwatch --timeout 0.2\n' > "$work/lines"
expect_shell 2 "in the shell, watch needs --count or --timeout"

# The end of the server ends the command.
hold
expect 0 '' shutdown
expect_released 143
grep -q 'the connection to the server was lost, and the lock with it' "$work/held" || fail "hold said: $(cat "$work/held")"
expect_stopped
start_central "$nycentral" --ports "$ports"
NYCTL_SERVER=127.0.0.1:$port

printf 'shutdown\n' > "$work/lines"
watch watch
expect_shell 0 ''
expect_stopped
expect_seen 'the connection to the server was lost'
expect_watched 3
start_central "$nycentral"
expect 0 '' --server "127.0.0.1:$port" shutdown
expect_stopped
report
