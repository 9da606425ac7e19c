#!/usr/bin/env bash
# nyctl-usage-test.sh NYCTL: the manual page and the completion for bash have the commands and options of the program's
# help.
set -eu
nyctl=$1
. "$(dirname "$0")/lib.sh"
page=$root/apps/nyctl/nyctl.1
. "$root/apps/nyctl/nyctl.bash-completion"

# same WHAT EXPECTED ACTUAL: both have the same lines, in any order.
same() {
  diff -u --label help --label "$1" <(sort <<< "$2") <(sort <<< "$3") || fail "$1 differs from the help"
}

# commands_of [GROUP]: the commands in the help; options_of [COMMAND...]: the options but --help.
commands_of() {
  "$nyctl" "$@" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'
}
options_of() {
  "$nyctl" "$@" --help | sed -nE '/^Options:/,/^$/s/^  (-h,)?(--[a-z-]+).*/\2/p' | grep -vx -e --help || true
}

# options_in LINE...: the long options that lines of the manual page name.
options_in() {
  grep -oE 'Fl -[a-z-]+' | sed 's/Fl /-/' | grep -vx -e --help || true
}

commands=$(commands_of | grep -vx online; commands_of online | sed 's/^/online /')
same 'the manual page' "$commands" "$(sed -nE 's/^\.It Cm (online [a-z]+|[a-z-]+).*/\1/p' "$page")"
same 'the manual page' "$(options_of)" "$(grep '^\.It Fl' "$page" | options_in)"
while read -r command; do
  # shellcheck disable=SC2086
  same "the manual page on $command" "$(options_of $command)" "$(grep -E "^\.It Cm $command( |\$)" "$page" | options_in)"
done <<< "$commands"

# complete_line WORD...: what completes the last word, a line each.
complete_line() {
  COMP_WORDS=("$nyctl" "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _nyctl
  [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
}

# completes EXPECTED WORD...: exactly these words complete the last one.
completes() {
  same "the completion of \"${*:2}\"" "$(tr ' ' '\n' <<< "$1")" "$(complete_line "${@:2}")"
}

same 'the completion of nothing' "$(commands_of)" "$(complete_line '')"
while read -r command; do
  # shellcheck disable=SC2086
  same "the completion of $command" "$(options_of $command; echo --help)" "$(complete_line $command --)"
done <<< "$commands"
completes '--help --json --server --user' -
completes 'lock locks' lo
completes 'shell shutdown' --user lock sh
completes 'ping version' online ''
completes 'access1 access2 exclude1 exclude2 exclusive none' lock part/42 --mode ''
completes 'access1+exclude1 access1+exclude2' hold part/42 --mode access1+exclude
[ -n "$(complete_line hold part/42 -- ba)" ] || fail 'a command to hold a lock for is not completed'
completes '' hold part/42 -- cat pa
completes 'exclusive' lock part/42 --mode = exclusi
completes 'access1 access2 exclude1 exclude2 exclusive none' lock part/42 --mode =
completes '--mode=exclusive' lock part/42 --mode=exclusi
completes '' --server = lo
completes '' --user lo
_command_offset() { COMPREPLY=("offset$1"); }
completes 'offset4' hold part/42 -- cat pa
unset -f _command_offset
(
  HOME=$(dirname "$nyctl") nyctl="~/$(basename "$nyctl")"
  completes 'lock locks' lo
) || fail 'a program below ~ is not asked'

mandoc -Tlint -W warning "$page" || fail 'the manual page is not well formed'
report
