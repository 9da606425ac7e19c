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
