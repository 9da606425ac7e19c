#!/usr/bin/env bash
# offline-test.sh PROGRAM [ARGUMENT...]: runs a program in a network namespace that has no network, a Windows program in
# Wine. Ends with 77 when this user may not make one.
set -eu
run_in_wine=$(dirname "$0")/../../tools/run-in-wine

unshare --net true 2> /dev/null || { echo "skipped: making a network namespace needs root"; exit 77; }
[[ $1 == *.exe ]] || exec unshare --net "$@"
"$run_in_wine" cmd /c exit  # a server that this starts has the network, which it needs for all other programs
exec unshare --net "$run_in_wine" "$@"
