#!/usr/bin/env bash
# use-test.sh BUILD SCRATCH VERSION: each public header compiles by itself, with the warnings that the library is built
# with; the example builds against both libraries and does what it says.
set -eu
. "$(dirname "$0")/../lib.sh"

configure "$(dirname "$0")/consumer" "$scratch/consumer"
must build-consumer cmake --build "$scratch/consumer"

configure "$root/examples/receiver" "$scratch/receiver" -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror"
must build-example cmake --build "$scratch/receiver"
coproc server { "$scratch/consumer/closing_server"; }
read -r port <&"${server[0]}"
for program in receiver receiver_static; do
  status=0
  "$scratch/receiver/$program" 127.0.0.1 1 || status=$?
  same "status of $program without a server" 1 "$status"
  status=0
  timeout 60 "$scratch/receiver/$program" 127.0.0.1 "$port" || status=$?
  same "status of $program without a port" 1 "$status"
done
exec {server[1]}>&-
wait
LD_LIBRARY_PATH='' ldd "$scratch/receiver/receiver" | grep -q "$prefix/lib/libnyserver.so.${version%%.*}" ||
  fail "receiver does not use the shared library"
! ldd "$scratch/receiver/receiver_static" | grep -q libnyserver || fail "receiver_static uses the shared library"
report
