# Functions of the scripts: the project's folder and files, waits, free ports, and steps with their times and failures.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
logs=$root/build/logs

# project_files PATTERN...: the project's files whose name matches one of the patterns, sorted, relative to $root.
project_files() {
  local pattern names=()
  for pattern; do names+=(-o -name "$pattern"); done
  (cd "$root" && find . \( -path ./.git -o -path ./build \) -prune -o -type f \( "${names[@]:1}" \) -printf '%P\n' |
    LC_ALL=C sort)
}

# usage: prints the calling script's first comment and ends with 2.
usage() {
  sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$0" >&2
  exit 2
}

# await COMMAND...: waits until the command succeeds, at most 60 s; false, with a message, if it does not.
await() {
  local end=$((SECONDS + 60))
  until "$@"; do
    ((SECONDS < end)) || { echo "waited long enough for: $*" >&2; return 1; }
    sleep 0.1
  done
}

# gone PROCESS: whether it has ended; for await.
gone() {
  ! kill -0 "$1" 2> /dev/null
}

# free_row: prints a range of ports, FIRST-LAST, that nobody uses, for a server to assign. It is reserved for this
# script.
free_row() {
  perl "$root/tools/free-row.pl" $$
}

# step NAME COMMAND...: prints that it starts, runs the command with its output in build/logs/NAME.log, and prints one
# line: the outcome, the seconds, and the command's last line when that begins with "= ". After a failure prints the
# relevant output and how to repeat the step, and adds the name to build/logs/failed-steps.
step() {
  local name=$1 start=$SECONDS log=$logs/$1.log command=${*:2}
  shift
  printf 'start   %-22s         tail -f build/logs/%s.log\n' "$name" "$name"
  if "$@" > "$log" 2>&1 < /dev/null; then
    printf 'ok      %-22s %4d s  %s\n' "$name" $((SECONDS - start)) "$(sed -n '$s/^= //p' "$log")"
    return 0
  fi
  echo "$name" >> "$logs/failed-steps"
  printf 'FAILED  %-22s %4d s\n%s\n        repeat it:  %s\n        all output: %s\n' "$name" $((SECONDS - start)) \
    "$(telling_lines "$log" | cut -c 1-200 | sed 's/^/        | /')" "${command#with_count "$name" }" "build/logs/$name.log"
  return 1
}

# telling_lines LOG: prints a short log whole; of a long one the lines with failures, and the end.
telling_lines() {
  if [ "$(wc -l < "$1")" -le 25 ]; then
    cat "$1"
  else
    tail -n +1 "$1" | head -n -8 | grep -E -m 15 'error[: ]|FAILED|Failure$|ERROR: |Timeout' || true
    echo ...
    tail -n 8 "$1"
  fi
}
