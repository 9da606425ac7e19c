# Shared by the tests of the programs from outside; sourced. Sets root, work and port.
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/lib.sh"
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

# runner PROGRAM: prints what runs a program of its system, in the same process.
runner() {
  case $1 in
    *.exe) echo "$root/tools/run-in-wine" ;;
    *) echo env ;;
  esac
}

# need_central NYCENTRAL: ends the test as skipped if there is no such server.
need_central() {
  [ ! -e "$1" ] || return 0
  echo "skipped: there is no central server $1; build the preset windows"
  exit 77
}

# start_central NYCENTRAL ARGUMENT...: starts a server, whose process is then $central, and waits for its port.
start_central() {
  rm -f "$work/port"
  set -m  # a background program ignores Ctrl+C unless it is a job of its own
  "$(runner "$1")" "$@" --port-file "$work/port" > "$work/central.log" 2>&1 &
  central=$!
  set +m
  await is_open
  [ -s "$work/port" ] || { cat "$work/central.log"; exit 1; }
  port=$(tr -d '\r\n' < "$work/port")
}

# is_open: whether the server has written its port, or has ended.
is_open() {
  [ -s "$work/port" ] || gone "$central"
}

# settle STAYING: waits until at most so many clients are connected, so that the next command meets no session of an
# earlier one.
settle() {
  await is_settled "$1" || fail "more than $1 connections stay open"
}
is_settled() {
  local staying
  staying=$(awk -v at="$(printf ':%04X' "$port")" \
    'substr($2, length($2) - 4) == at && ($4 == "01" || $4 == "08")' /proc/net/tcp | wc -l)
  [ "$staying" -le "$1" ]
}

# expect_stopped: waits until the server has ended, which has been requested.
expect_stopped() {
  local stopping=$central
  await gone "$stopping" || { fail "nycentral goes on"; return; }
  central=
  wait "$stopping" || fail "nycentral ended with $?"
  grep -q '^stopping' "$work/central.log" || fail "nycentral did not print that it stops"
}

# report: the last line, and the status.
report() {
  [ $failures -eq 0 ] || exit 1
  echo "all as expected"
}
