#!/usr/bin/env bash
# check-docs finds links and names of files that are not there, and blocks that are not what their test says.
set -eu
. "$(dirname "$0")/../tools/testing.sh"

# written TEXT: makes the project anew, with a guide of that text, where \n is a line's end.
written() {
  rm -rf "${project:?}"/*
  mkdir -p "$project/docs" "$project/tools/a"
  printf '%b' "$1" > "$project/docs/guide.md"
  printf 'int a;\n  int b;\nint c;\nint d;\n' > "$project/source.cpp"
}

# block WAY TEXT: a guide with one block that is tested this way.
block() { written "text\n\n<!-- test: $1 -->\n\`\`\`text\n$2\n\`\`\`\n"; }

written 'text\n- a list\n  that goes on\n\n```sh\n./run-tests\n```\n'
accepts check-docs
written '<!-- test: run -->\n\n```sh\n$ a\n```\n'
rejects check-docs 'that does not come next'
written '<!-- test: run -->\n```sh\n$ ./run-tests\n'
rejects check-docs 'that does not come next'
block later 'text'
rejects check-docs 'docs/guide.md:3: "later" is no way'
block run '$ nyctl ping'
accepts check-docs
block run 'nyctl ping'
rejects check-docs 'a session has lines that begin with'

block 'in source.cpp' 'int a;\nint b;'
accepts check-docs
block 'in source.cpp' '    int a;\n\nint c;\nint d;'
accepts check-docs
block 'in source.cpp' 'int a;\nint c;'
rejects check-docs 'source.cpp does not have what begins with: int a;'
block 'in source.cpp' 'int c;\n\nint a;'
rejects check-docs 'source.cpp does not have what begins with: int a;'
block 'in missing.cpp' 'int a;'
rejects check-docs 'there is no missing.cpp'

written 'the script `tools/a`, and build/tools/b\n\n```sh\ntools/a\n```\n'
accepts check-docs
written 'the script `tools/none`\n'
rejects check-docs 'docs/guide.md: there is no tools/none'
written '```sh\ntshark -X lua_script:tools/none.lua\n```\n'
rejects check-docs 'there is no tools/none.lua'
written 'text\n'
printf '`tools/none`\n' > "$project/tools/a/README.md"
rejects check-docs 'tools/a/README.md: there is no tools/none'

written '# A head, and more\n\n[a](guide.md#a-head-and-more) [b](#a-head-and-more) [c](../source.cpp) [d](http://a.example/)\n'
accepts check-docs
written '[a](none.md)\n'
rejects check-docs 'there is no docs/none.md'
written '# A head\n[a](#a-tail)\n'
rejects check-docs 'docs/guide.md has no heading a-tail'

finish
