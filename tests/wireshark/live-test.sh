#!/usr/bin/env bash
# live-test.sh NYCENTRAL NYCTL: a session of the client with the central server, captured on loopback and decoded.
# What the dissector finds is what the programs said. Ends with 77 when this user may not capture.
set -eu
nycentral=$1
nyctl=$2
. "$(dirname "$0")/../apps/lib.sh"

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  sudo -n true 2> /dev/null || { echo "skipped: capturing needs root, or sudo without a password"; exit 77; }
  as_root=(sudo -n)
fi

ports=8
capture=
listener=
stop_capture() {
  [ -z "$capture" ] || "${as_root[@]}" kill "$capture" 2> /dev/null || true
}
stop_all() {
  exec 3>&- 4>&-
  stop_capture
  [ -z "$listener" ] || kill "$listener" 2> /dev/null || true
  cleanup
}
trap stop_all EXIT

# wait_for TEXT FILE: until the file has the text.
wait_for() {
  await grep -aqs "$1" "$2" || { echo "FAILED: no \"$1\" in $2: $(tail -c 2000 "$2" | cat -v)"; exit 1; }
}

# The listeners of the users, which the central server connects to.
mkfifo "$work/listening" "$work/anna"
perl "$(dirname "$0")/listener.pl" $ports < "$work/listening" > "$work/heard" &
listener=$!
exec 3> "$work/listening"
wait_for '[0-9]' "$work/heard"
first=$(head -n 1 "$work/heard")
last=$((first + ports - 1))

start_central "$nycentral" --ports "$first-$last" --probe-seconds 1
export NYCTL_SERVER=127.0.0.1:$port

"${as_root[@]}" dumpcap -q -i lo -f "tcp port $port or tcp portrange $first-$last" -a duration:280 -w - \
  > "$work/capture.pcapng" 2> "$work/dumpcap.log" &
capture=$!
is_captured() { grep -qs '^File:' "$work/dumpcap.log" || [ ! -e "/proc/$capture" ]; }
await is_captured
[ -e "/proc/$capture" ] || { echo "skipped: no capturing here: $(cat "$work/dumpcap.log")"; exit 77; }

# shell_of USER: nyctl with the commands of its standard input, on one connection.
shell_of() { "$root/tools/run-in-wine" "$nyctl" --json --user "$1" shell; }

# Anna stays while Bob works, and is told of it.
shell_of Anna < "$work/anna" > "$work/anna.log" 2>&1 &
anna=$!
exec 4> "$work/anna"
printf 'register\nopen Server=a\n' >&4
wait_for '"id":0' "$work/anna.log"

cat > "$work/bob" << 'END'
ping
lock part/42 --mode 0x05
holders part/42
locks
unlock part/42
open Server=a
openers 0
connections
users
send-connection 0 7 saved
send-user Anna hello
send-all 'to all'
rename Bert
port
time
machine
info
verify
events 1
close 0
END
shell_of Bob < "$work/bob" > "$work/bob.log" 2>&1 || fail "the shell ended with $?: $(cat "$work/bob.log")"
wait_for "^$first .*NySeUser.*Bert" "$work/heard"  # the last that Anna is told
wait_for "^$first \$" "$work/heard"  # a probe
printf 'shutdown\n' >&4
exec 4>&-
wait "$anna" || true
expect_stopped
printf 'the end of the talk' > "/dev/tcp/127.0.0.1/$first"
wait_for 'the end of the talk' "$work/capture.pcapng"  # with all that came before it
stop_capture
wait "$capture" || true
capture=

tr -d '\r' < "$work/bob.log" > "$work/bob.json"

# said FIELD: the first value of the field in what nyctl printed for Bob.
said() { sed -n "s/.*\"$1\":\"\{0,1\}\([^\",}]*\).*/\1/p" "$work/bob.json" | head -n 1; }

# Nothing tells the dissector the ports: it knows the connections by what they begin with.
WIRESHARK_CONFIG_DIR=$work tshark -n -X "lua_script:$root/tools/wireshark/nyserver.lua" -r "$work/capture.pcapng" \
  -Y nyserver -T fields -E separator=/t -e tcp.stream -e _ws.col.Info -e _ws.expert.message \
  -e nyserver.request_in \
  > "$work/decoded" 2> "$work/tshark.log" || fail "tshark ended with $?: $(cat "$work/tshark.log")"
if grep -i 'lua error' "$work/decoded" "$work/tshark.log"; then fail "the dissector failed"; fi

# conversation TEXT: what was said on the connection that has the text, one message a line.
conversation() {
  local stream
  stream=$(grep -F -m 1 -- "$1" "$work/decoded" | cut -f 1)
  awk -F '\t' -v stream="$stream" '$1 == stream { print $2 }' "$work/decoded" | sed 's/; /\n/g'
}

# expect_conversation NAME TEXT [IGNORED]: the connection that has the text holds exactly the lines of standard input,
# and others that begin with what is ignored.
expect_conversation() {
  cat > "$work/expected"
  conversation "$2" | grep -v "^${3:-nothing}" > "$work/actual"
  diff -u "$work/expected" "$work/actual" > "$work/difference" || fail "$1: $(cat "$work/difference")"
}

expect_conversation "Anna's requests" 'getPortClient Anna' << 'END'
initializeSchema 2015
initializeSchema: 2015
getPortClient Anna
getPortClient: NySeUser Anna
openConnection "Server=a"
openConnection: 0
isAlive
isAlive: alive
shutDownServer
disconnect
END

expect_conversation "Bob's requests" 'getPortClient Bob' << END
initializeSchema 2015
initializeSchema: 2015
isAlive
isAlive: alive
getVersion
getVersion: 1
getPortClient Bob
getPortClient: NySeUser Bob
lock "part/42" 0x05
lock: granted
isLockBy "part/42"
isLockBy: held, NySeUserPtrArray 1
getLock
getLock: NySeLockArray 1
getAllUser
getAllUser: NySeUserPtrArray 2
unLock "part/42"
isAlive
isAlive: alive
openConnection "Server=a"
openConnection: 0
isOpenConnectionBy 0
isOpenConnectionBy: NySeUserPtrArray 2
getConnection
getConnection: NySeConnectionArray 1
getAllUser
getAllUser: NySeUserPtrArray 2
sendConnectionData 0 7 NySeMessage saved
isAlive
isAlive: alive
getAllUser
getAllUser: NySeUserPtrArray 2
sendUserData to Anna NySeMessage hello
isAlive
isAlive: alive
sendAllUserData NySeMessage to all
isAlive
isAlive: alive
updateUserName "Bert"
updateUserName: done
getAnotherPort
getAnotherPort: $((first + 2))
getCurrentTime
getCurrentTime: $(said time)
getMachineIdentifiant
getMachineIdentifiant: "$(said machine)"
getCurrentTime
getCurrentTime: $(sed -n '/^getMachineIdentifiant:/,$s/^getCurrentTime: //p' <(conversation 'getPortClient Bob'))
getMachineIdentifiant
getMachineIdentifiant: "$(said machine)"
isAlive
isAlive: alive
verifyCoherancy
isAlive
isAlive: alive
getEventListFromEventViewer 1
getEventListFromEventViewer: "$(said event)"
closeConnection 0
isAlive
isAlive: alive
disconnect
END

expect_conversation "what Anna is told" 'notification 54' isAlive << 'END'
notification 54 NySeUser Bob
notification 50 NySeLock part/42
notification 51 NySeLock part/42
notification 52 NySeConnection Server=a
notification 56 NySeMessage saved
notification 57 NySeMessage hello
notification 58 NySeMessage to all
notification 53 NySeConnection Server=a
notification 55 NySeUser Bert
END

conversation 'notification 54' | grep -qx 'isAlive: alive' || fail "no probe with its answer"

[ -z "$(cut -f 3 "$work/decoded" | grep .)" ] || fail "remarks where nothing is wrong: $(cut -f 2,3 "$work/decoded")"
unanswered=$(awk -F '\t' '$2 ~ /: / && $4 == ""' "$work/decoded")
[ -z "$unanswered" ] || fail "replies without their requests: $unanswered"
report
