#!/usr/bin/env bash
# check-words finds each kind of text that does not belong.
set -eu
. "$(dirname "$0")/testing.sh"

# written TEXT [FILE]: $project holds one file with TEXT, where \n is a line's end.
written() {
  rm -rf "${project:?}"/*
  mkdir -p "$(dirname "$project/${2-.}")"
  printf '%b' "$1" > "$project/${2-source.cpp}"
}

written 'int a;\nint b;\n'
accepts check-words
written 'see tests/data/home/base/\n'
accepts check-words
written 'see /ro''ot/x\n'
rejects check-words 'outside this tree'
written 'cd "/ho''me/me/x"\n' script
rejects check-words 'outside this tree'
written 'as Pa''rt 2.1 says\n'
rejects check-words 'outside this tree'
written 'Beh''ind the value\n' docs/guide.md
rejects check-words 'replaces'
written 'a session that is kn''own by its number\n' NyServer/Lock.h
rejects check-words 'replaces'
written 'beh''ind\n' apps/central/Lock.h
accepts check-words
written '| after | beh''ind |\n' docs/style.md
accepts check-words
written 'a note beh''ind\n' docs/style.md
rejects check-words 'replaces'
written 'int a; \n'
rejects check-words 'white space at the end'
written 'int a;'
rejects check-words 'no newline at the end'
written "$(printf 'int a;\\n%.0s' {1..450})"
accepts check-words
written "$(printf 'int a;\\n%.0s' {1..451})"
rejects check-words '451 lines, more than 450'
written "$(printf 'text\\n%.0s' {1..451})" guide.md
accepts check-words

finish
