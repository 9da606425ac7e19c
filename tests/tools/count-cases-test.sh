#!/usr/bin/env bash
# count-cases counts GoogleTest's cases, and programs that never tell theirs as one.
set -eu
. "$(dirname "$0")/testing.sh"

# counts EXPECTED STATUS OUTPUT: one program with that outcome and output (\n is a line's end) counts as EXPECTED.
counts() {
  printf '<testsuite>\n<testcase name="a" classname="a" time="1" status="%s">\n<system-out>%b</system-out>\n</testcase>\n' \
    "$2" "$3" > "$project/junit.xml"
  local actual
  actual=$("$root/tools/count-cases" "$project/junit.xml")
  [ "$actual" = "$1" ] || fail "status $2 with \"$3\" counts as $actual instead of $1"
}

ran='[==========] 12 tests from 3 test suites ran. (5 ms total)\n'
counts '12 0 0' run "[==========] Running 12 tests from 3 test suites.\n$ran[  PASSED  ] 12 tests.\n"
counts '1 0 0' run '[==========] 1 test from 1 test suite ran. (5 ms total)\r\n[  PASSED  ] 1 test.\r\n'
counts '10 0 2' run "$ran[  PASSED  ] 10 tests.\n[  SKIPPED ] 2 tests, listed below:\n[  SKIPPED ] A.B\n"
counts '9 3 0' fail "[  FAILED  ] A.B (1 ms)\n$ran[  PASSED  ] 9 tests.\n"
counts '12 1 0' fail "$ran[  PASSED  ] 12 tests.\nleaked 3 bytes\n"
counts '0 1 0' fail 'crashed\n'
counts '1 0 0' run 'a test of another kind\n'
counts '0 0 1' notrun ''

finish
