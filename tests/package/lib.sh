# Shared by the tests of the package; sourced. They are called with the build's folder, a folder of their own and the
# package's version. Sets build, scratch, version and prefix, where the package is installed, and what the tests of the
# programs share.
. "$(dirname "${BASH_SOURCE[0]}")/../apps/lib.sh"
build=$1
scratch=$2
version=$3
prefix=$scratch/prefix
mkdir -p "$scratch"

# same WHAT EXPECTED ACTUAL: fails with the difference.
same() {
  diff -u --label "expected $1" --label "actual $1" - <(echo "$3") <<< "$2" || fail "$1 differ"
}

# files_of FOLDER: the paths of its files, sorted.
files_of() {
  (cd "$1" && find . -type f -printf '%P\n' | LC_ALL=C sort)
}

# must WHAT COMMAND...: runs the command; its output is shown only when it fails, which ends the test.
must() {
  local what=$1
  shift
  "$@" > "$scratch/$what.log" 2>&1 || { cat "$scratch/$what.log"; echo "FAILED: $what"; exit 1; }
}

# configure SOURCE BUILD [ARGUMENT...]: a user's project, which has the package and the toolchain.
configure() {
  must "configure-${2##*/}" cmake -S "$1" -B "$2" -G Ninja -D CMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-toolchain.cmake" \
    -D NyServer_DIR="$prefix/lib/cmake/NyServer" "${@:3}"
}
