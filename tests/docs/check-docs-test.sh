#!/usr/bin/env bash
# check-docs finds blocks that nothing tests, and blocks that are not what their test says.
set -eu
. "$(dirname "$0")/../tools/testing.sh"

# written TEXT: makes the project anew, with a guide of that text, where \n is a line's end.
written() {
  rm -rf "${project:?}"/*
  mkdir -p "$project/docs" "$project/tools" "$project/NyServer/records" "$project/apps"
  printf '%b' "$1" > "$project/docs/guide.md"
  printf 'int a;\n  int b;\nint c;\nint d;\n' > "$project/source.cpp"
  printf '# reads docs/guide.md\n' > "$project/test.sh"
  printf 'class NySeUser;\n' > "$project/NyServer/records/NySeUser.h"
  printf '{ "name": "windows" }\n' > "$project/CMakePresets.json"
  printf 'add_executable(host main.cpp)\nset(NY_FUZZ ON)\n' > "$project/CMakeLists.txt"
  printf 'all=(format layers)\n' > "$project/run-tests"
  printf "declare -A allowed=(\n  [base/mfc]=''\n  [records]='base/mfc'\n)\n" > "$project/tools/check-layers"
  chmod +x "$project/run-tests" "$project/tools/check-layers"
}

# block WAY TEXT: a guide with one block that is tested this way.
block() { written "text\n\n<!-- test: $1 -->\n\`\`\`text\n$2\n\`\`\`\n"; }

written 'text\n- a list\n  that goes on\n'
accepts check-docs
written 'text\n\n```sh\n./run-tests\n```\n'
rejects check-docs 'docs/guide.md:3: nothing tests this block'
written 'text\n'
mkdir "$project/tools/a"
printf '```sh\n./run-tests\n```\n' > "$project/tools/a/README.md"
rejects check-docs 'tools/a/README.md:1: nothing tests this block'
written '<!-- test: run -->\n\n```sh\n$ a\n```\n'
rejects check-docs 'nothing tests this block'
written 'text\n\n    ./run-tests\n'
rejects check-docs 'docs/guide.md:3: a block that is indented'
written '<!-- test: run -->\n```sh\n$ ./run-tests\n'
rejects check-docs 'the block is not ended'
block later 'text'
rejects check-docs '"later" is no way'
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

block 'by test.sh' 'text'
accepts check-docs
block 'by source.cpp' 'text'
rejects check-docs 'source.cpp does not read this document'
block 'by missing.sh' 'text'
rejects check-docs 'there is no missing.sh'

block commands './run-tests format  # and so on'
accepts check-docs
block commands './run-demo'
rejects check-docs 'there is no program ./run-demo'
block commands './run-tests tidy'
rejects check-docs 'there is no step tidy'
block commands 'cmake --preset windows -D NY_FUZZ=ON && cmake --build --preset windows --target host'
accepts check-docs
block commands 'cmake --preset linux'
rejects check-docs 'there is no preset linux'
block commands 'cmake --preset windows && cmake --build --preset linux'
rejects check-docs 'there is no preset linux'
block commands 'cmake --build --preset windows --target guest'
rejects check-docs 'there is no target guest'
block commands 'cmake --preset windows -DNY_NONE=1'
rejects check-docs 'there is no variable NY_NONE'
block commands 'cmake \\\\\\n  --preset linux'
rejects check-docs 'there is no preset linux'
block commands 'tshark -X lua_script:tools/none.lua'
rejects check-docs 'there is no tools/none.lua'

block tree 'NyServer/    the library\n  records/   users\nrun-tests'
accepts check-docs
block tree 'NyServer/    the library\n  framing/   messages'
rejects check-docs 'there is no NyServer/framing'

block layers 'base/mfc < records'
accepts check-docs
block layers 'records < base/mfc'
rejects check-docs 'the layer base/mfc must not use records'
block layers 'base/mfc < base/mfc'
rejects check-docs 'the layer records is missing'
block layers 'base_mfc["base/mfc"]\nrecords --> base_mfc'
accepts check-docs
block layers 'base_mfc --> records'
rejects check-docs 'the layer base/mfc must not use records'

block names 'worker: records/NySeUser.h, NySeUser'
accepts check-docs
block names 'worker: NySeLock'
rejects check-docs 'nothing is called NySeLock'

written '# A head, and more\n\n[a](guide.md#a-head-and-more) [b](#a-head-and-more) [c](../source.cpp) [d](http://a.example/)\n'
accepts check-docs
written '[a](none.md)\n'
rejects check-docs 'there is no docs/none.md'
written '# A head\n[a](#a-tail)\n'
rejects check-docs 'docs/guide.md has no heading a-tail'

finish
