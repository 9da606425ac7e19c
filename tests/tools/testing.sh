# Shared by the tests of the scripts: a folder for a made-up project, and what a check must say of it.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
project=$(mktemp -d)
trap 'rm -rf "$project"' EXIT
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# accepts CHECK: the check passes on $project.
accepts() {
  local output
  output=$("$root/tools/$1" "$project" 2>&1) || fail "$1 complains of nothing wrong: $output"
}

# rejects CHECK TEXT: the check fails on $project and says TEXT.
rejects() {
  local output
  if output=$("$root/tools/$1" "$project" 2>&1); then
    fail "$1 passes where it should say: $2"
  elif [[ $output != *"$2"* ]]; then
    fail "$1 should say: $2; it says: $output"
  fi
}

# finish: ends the test with the outcome.
finish() {
  [ $failures -eq 0 ] || exit 1
  echo "all as expected"
}
