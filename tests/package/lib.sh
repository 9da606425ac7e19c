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

# configure SOURCE BUILD [ARGUMENT...]: a user's project, which has the package.
configure() {
  must "configure-${2##*/}" cmake -S "$1" -B "$2" -G Ninja -D NyServer_DIR="$prefix/lib/cmake/NyServer" "${@:3}"
}

# target_of FILE NAME: the header that FILE means by NAME; nothing when it is a header from outside.
target_of() {
  local candidate
  for candidate in "$2" "${1%/*}/$2" "NyServer/base/mfc/$2" "NyServer/base/qo/$2"; do
    [ ! -e "$root/$candidate" ] || { echo "$candidate"; return; }
  done
}

# public_headers FILE...: those, and what they include.
declare -A public
add_header() {
  local included target
  [ -z "${public[$1]-}" ] || return 0
  public[$1]=yes
  for included in $(sed -nE 's/^ *# *include ["<]([^">]+)[">].*/\1/p' "$root/$1"); do
    target=$(target_of "$1" "$included")
    [ -z "$target" ] || add_header "$target"
  done
}
public_headers() {
  local header
  for header; do add_header "$header"; done
  printf '%s\n' "${!public[@]}" | LC_ALL=C sort
}

# expect_no_paths: no file of the package names a folder that nobody else has.
expect_no_paths() {
  local folder found
  for folder in "$root" "$HOME"; do
    found=$(grep -rlaF -e "$folder/" "$prefix" || true)
    [ -z "$found" ] || fail "the folder $folder is named in: $found"
  done
}
