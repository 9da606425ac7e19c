#!/usr/bin/env bash
# sessions-test.sh NYCENTRAL NYCTL: the sessions in the documents go as they are shown. A document's sessions are typed
# into one shell each. Where a document says port 42015, a free one is taken; times, ports, numbers of sessions and the
# names of this machine are masked. Exit status 77: the server is not built.
set -eu
nycentral=$1
nyctl=$2
. "$(dirname "$0")/../apps/lib.sh"
need_central "$nycentral"
PATH=$(dirname "$nyctl"):$PATH  # for a command that a program starts
set +e
shopt -s failglob
cd "$root"

# As Windows and Linux have it.
computer="$(hostname | cut -d . -f 1 | tr '[:lower:]' '[:upper:]' | cut -c 1-15)|$(hostname | cut -d . -f 1)"
documented=42015

# masked: standard input without what differs from run to run.
masked() {
  tr -d '\r' | sed -E \
    -e "s/\b($computer)\b/WS-01/g" \
    -e 's/[0-9]{4}-[0-9]{2}-[0-9]{2}[T ][0-9:.]{8,12}Z?/DATE/g; s/\b[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}\b/TIME/g' \
    -e 's/\b[0-9]+ (ms|bytes)\b/N \1/g; s/\bsession [0-9]+\b/session N/g' \
    -e 's/\b2015\b/SCHEMA/g; s/\b[0-9]{2,}\b/NUMBER/g' \
    -e 's/^(machine: |MACHINE ID.*: |CURRENT TIME.*: |HOSTNAME.*: ).*/\1MASKED/' \
    -e 's/[[:space:]]+/ /g; s/ $//'
}

# The programs as the documents call them, without what starts them.
nyctl() { "$(runner "$nyctl")" "$nyctl" "${@/:$documented/:$port}"; }
nycentral() {
  local words=()
  rm -f "$work/port"
  while [ $# -gt 0 ]; do
    case $1 in
      --port | --ports) shift ;;
      *) words+=("$1") ;;
    esac
    shift
  done
  exec "$(runner "$nycentral")" "$nycentral" --port 0 --port-file "$work/port" \
    --ports "$(free_row)" "${words[@]}"
}

# has_begun: whether what was begun last has said as many lines as are expected.
has_begun() {
  [ "$(wc -l < "$background")" -ge "$(wc -l < "$expected")" ]
}

# begin COMMAND: runs it in the background; what it says at first, as many lines as in the file $expected, goes to the
# file $said.
begin() {
  background=$work/background.$((++backgrounds))
  [[ $1 != nycentral* ]] || background=$work/central.log
  : > "$background"
  set -m
  eval "${1%&}" > "$background" 2>&1 &
  set +m
  jobs+=($!)
  await has_begun
  if [[ $1 == nycentral* ]]; then
    central=$!
    port=$(tr -d '\r\n' < "$work/port")
    export NYCTL_SERVER=127.0.0.1:$port
    jobs=()
  fi
  head -n "$(wc -l < "$expected")" "$background" > "$said"
  told=$(wc -l < "$said")
}

# wait: for what still runs but the server; shows what the last one has said since it began.
wait() {
  local job
  [ $# -eq 0 ] || { builtin wait "$@"; return; }
  for job in "${jobs[@]}"; do builtin wait "$job"; done
  jobs=()
  tail -n "+$((told + 1))" "$background"
}

# type_command COMMAND: compares what it says with the file $expected.
type_command() {
  local command=$1
  case $command in
    *'&') begin "$command" ;;
    *) eval "$command" > "$said" 2>&1 ;;
  esac
  [ -z "$port" ] || settle ${#jobs[@]}
  diff -u --label "$where says" --label 'but it is' <(masked < "$expected") <(masked < "$said") ||
    fail "$where: $command"
}

# type_session FILE
type_session() {
  local line command=
  : > "$expected"
  while IFS= read -r line <&9 || [ -n "$line" ]; do
    if [[ $line == '$ '* ]]; then
      [ -z "$command" ] || type_command "$command"
      command=${line#'$ '}
      while [[ $command == *\\ ]]; do
        IFS= read -r line <&9
        command=${command%\\}$line
      done
      command=$(sed -E 's|tools/run-in-wine build/windows/bin/(\w+)\.exe|\1|g' <<< "$command")
      : > "$expected"
    else
      printf '%s\n' "$line" >> "$expected"
    fi
  done 9< "$1"
  type_command "$command"
}

expected=$work/expected
said=$work/said
sessions=0

# test_document DOCUMENT: in a shell of its own, with a folder and a server of its own.
test_document() {
  local background='' backgrounds=0 told=0 jobs=() line
  port=
  mkdir -p "$work/home"
  cd "$work/home"
  while read -r line; do
    where=$1:$line
    sed -n "$((line + 2)),\$p" "$root/$1" | sed '/^```$/,$d' > "$work/session"
    type_session "$work/session"
    sessions=$((sessions + 1))
  done < <(grep -n '^<!-- test: run -->$' "$root/$1" | cut -d : -f 1)
  if [ -n "$central" ]; then
    nyctl shutdown > /dev/null 2>&1
    expect_stopped
  fi
  cd "$root"
}

for document in README.md docs/*.md examples/*/README.md; do
  grep -q '^<!-- test: run -->$' "$document" && test_document "$document"
done

# Every command has an example.
for command in $(nyctl --help 2> /dev/null | tr -d '\r' | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'); do
  grep -qE "^\\$ .*(\\\\n|[ '\"])$command\b" "$root/docs/nyctl.md" || fail "docs/nyctl.md has no example of $command"
done
[ $sessions -gt 0 ] || fail "no document has a session"
echo "$sessions sessions"
report
