# Shared by the scripts: where the project is, which files it has, waits, free ports, and steps with their seconds, notes
# and failures.
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

# await COMMAND...: until the command succeeds, at most 60 s; false, with a word about it, when it does not.
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

# free_row: prints a range of ports, FIRST-LAST, that nobody uses, for a server to hand out. It is this script's own.
free_row() {
  perl "$root/tools/free-row.pl" $$
}

# step NAME COMMAND...: says that it starts, runs the command with its output in build/logs/NAME.log, and prints one line:
# the outcome, the seconds, and the command's last line when that begins with "= ". A failure also prints what the output says of it and
# how to repeat the step, and adds the name to build/logs/failed-steps.
step() {
  local name=$1 start=$SECONDS log=$logs/$1.log
  shift
  printf 'start   %-22s         tail -f build/logs/%s.log\n' "$name" "$name"
  if "$@" > "$log" 2>&1 < /dev/null; then
    printf 'ok      %-22s %4d s  %s\n' "$name" $((SECONDS - start)) "$(sed -n '$s/^= //p' "$log")"
    return 0
  fi
  echo "$name" >> "$logs/failed-steps"
  printf 'FAILED  %-22s %4d s\n%s\n        repeat it:  %s\n        all output: %s\n' "$name" $((SECONDS - start)) \
    "$(telling_lines "$log" | cut -c 1-200 | sed 's/^/        | /')" "$(as_command "$@")" "build/logs/$name.log"
  return 1
}

# telling_lines LOG: all of a short log; of a long one the lines that tell of failures, and the end.
telling_lines() {
  if [ "$(wc -l < "$1")" -le 25 ]; then
    cat "$1"
  else
    tail -n +1 "$1" | head -n -8 | grep -E -m 15 'error[: ]|FAILED|Failure$|ERROR: |Timeout' || true
    echo ...
    tail -n 8 "$1"
  fi
}

# as_command WORD...: what to type at a prompt for a step's command.
as_command() {
  case $1 in
    configure) echo "cmake --preset $2" ;;
    build) echo "cmake --build --preset ${*:2}" ;;
    run_ctest) echo "ctest --preset $2 --rerun-failed" ;;
    *) echo "$*" ;;
  esac
}

# configure PRESET: makes build/PRESET unless it is there; later changes of the build files are noticed by ninja.
configure() {
  if [ -e "build/$1/build.ninja" ] && [ ! CMakePresets.json -nt "build/$1/build.ninja" ]; then
    echo "= skipped: configured before"
  else
    cmake --preset "$1"
  fi
}

# build PRESET [NINJA_ARGUMENT...]: builds at a low priority, since tests of another preset may be running meanwhile.
build() {
  local preset=$1
  shift
  nice -n 10 cmake --build --preset "$preset" "$@" || return 1
  if grep -q '^ninja: no work to do' "$log"; then
    echo "= skipped: nothing changed"
  else
    echo "= $(grep -c '^\[[0-9]*/[0-9]*\]' "$log") build steps"
  fi
}
