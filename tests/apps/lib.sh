# Shared by the tests of the programs from outside; sourced. Sets root, work and port.
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

# free_row: prints a range of 20 ports, FIRST-LAST, that nobody uses, for a server to hand out. With those of another server of
# this machine its users would be told this server's news. They are below those that the system gives to who asks for any,
# and every process looks first in a place of its own.
free_row() {
  awk -v place=$$ '
    FNR > 1 { used[substr($2, length($2) - 3)] }
    function is_free(first, port) {
      for (port = first; port < first + 20; port++) if (sprintf("%04X", port) in used) return 0
      return 1
    }
    END {
      for (row = 0; row < 600; row++) {
        first = 20000 + (place + row) % 600 * 20
        if (is_free(first)) { print first "-" first + 19; exit }
      }
      exit 1
    }' /proc/net/tcp
}

# start_central NYCENTRAL ARGUMENT...: starts a server, whose process is then $central, and waits for its port.
start_central() {
  set -m  # a background program ignores Ctrl+C unless it is a job of its own
  "$root/tools/run-in-wine" "$@" --port-file "$work/port" > "$work/central.log" 2>&1 &
  central=$!
  set +m
  for _ in $(seq 200); do
    [ ! -s "$work/port" ] || break
    sleep 0.1
  done
  port=$(tr -d '\r\n' < "$work/port")
}

# expect_stopped: waits for the end of the server, which has been asked for.
expect_stopped() {
  local stopping=$central
  for _ in $(seq 100); do
    kill -0 "$stopping" 2> /dev/null || break
    sleep 0.1
  done
  if kill -0 "$stopping" 2> /dev/null; then
    fail "nycentral goes on"
    return
  fi
  central=
  wait "$stopping" || fail "nycentral ended with $?"
  grep -q '^stopping' "$work/central.log" || fail "nycentral did not say that it stops"
}

# report: the last line, and the status.
report() {
  [ $failures -eq 0 ] || exit 1
  echo "all as expected"
}
