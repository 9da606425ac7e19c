#!/usr/bin/env bash
# Each row of docs/faults.md names tests, and each test that it names is in the sources.
set -eu
. "$(dirname "$0")/testing.sh"

# The cases of the sources, as "Suite.Case".
cases=$(cd "$root/tests" && grep -rhozP --include='*.cpp' '\n(TYPED_)?TEST(_[FP])?\(\s*\w+,\s*\w+\s*\)' . | tr -d ' \0' |
  sed -nE 's/^(TYPED_)?TEST(_[FP])?\((\w+),(\w+)\)$/\3.\4/p' | sort -u)
rows=$(sed -n '/^|---/,/^$/p' "$root/docs/faults.md" | grep '^| ' | grep -v '^| \*\*')

# missing_from CASES < ROWS: the tests that the rows name and CASES has not; a row that names none.
missing_from() {
  while IFS= read -r row; do
    named=$(grep -oE '`\w+\.\w+`' <<< "${row%|*}" | tr -d '`')
    [ -n "$named" ] || echo "no test in: $row"
    grep -vxF -e "$1" <<< "$named" || true
  done
}

[ "$(wc -l <<< "$rows")" -ge 20 ] || fail "docs/faults.md has no table"
[ "$(wc -l <<< "$cases")" -ge 500 ] || fail "the sources have no cases"
missing=$(missing_from "$cases" <<< "$rows")
[ -z "$missing" ] || fail "docs/faults.md names what is not in the sources:"$'\n'"$missing"

# The test itself finds both.
[ "$(missing_from "$cases" <<< '| a | b | c | d | `Nobody.WroteThis` |')" = Nobody.WroteThis ] || fail "an unknown test is not found"
[[ $(missing_from "$cases" <<< '| a | b | c | d | none |') == 'no test in'* ]] || fail "a row without a test is not found"

finish
