#!/usr/bin/env bash
# receive-test.sh BUILD SCRATCH VERSION: the example, built by use-test.sh with either library, receives what the server
# sends when the installed nyctl takes a lock.
set -eu
. "$(dirname "$0")/../lib.sh"
nycentral=$root/build/windows/bin/nycentral.exe
need_central "$nycentral"

start_central "$nycentral" --ports "$(free_row)"
knows_receiver() { [[ $("$prefix/bin/nyctl" --server "127.0.0.1:$port" users) == *Receiver* ]]; }
for program in receiver receiver_static; do
  "$scratch/receiver/$program" 127.0.0.1 "$port" > "$work/receiver.log" &
  receiver=$!
  await knows_receiver
  settle 1
  "$prefix/bin/nyctl" --server "127.0.0.1:$port" lock part/3 > "$work/nyctl.log"
  wait "$receiver" || fail "$program ended with $?"
  # More may arrive before it disconnects.
  same "lines of $program" $'notification 54\nnotification 50\nnotification 51' "$(head -n 3 "$work/receiver.log")"
  settle 0
done
"$prefix/bin/nyctl" --server "127.0.0.1:$port" shutdown > "$work/nyctl.log"
expect_stopped
report
