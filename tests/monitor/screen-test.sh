#!/usr/bin/env bash
# What puts windows on a screen: run-on-screen needs one, and the picture of the documents can be taken anew with it.
set -eu
. "$(dirname "$0")/../tools/testing.sh"

status=0
said=$(env -u DISPLAY "$root/tools/run-on-screen" cmd 2>&1) || status=$?
[[ $status -eq 1 && $said == *'DISPLAY is not set'* ]] || fail "run-on-screen without a screen ends with $status: $said"

# Nothing of the size of the window is drawn when it is not there.
"$root/tools/screenshot" "$project/picture.png" > "$project/log" 2>&1 || {
  fail "screenshot: $(cat "$project/log")"
  finish
}
size() { pngtopnm "$1" | pnmfile | sed 's/.*, \(.* by [0-9]*\).*/\1/'; }
documented=$(size "$root/docs/images/nymonitor.png")
taken=$(size "$project/picture.png")
[ "$taken" = "$documented" ] || fail "the picture has $taken points, that of the documents $documented"
# A window that is not painted compresses to a small file.
bytes() { stat -c %s "$1"; }
[ $((2 * $(bytes "$project/picture.png"))) -gt "$(bytes "$root/docs/images/nymonitor.png")" ] ||
  fail "the picture has $(bytes "$project/picture.png") bytes: its window is not painted"

finish
