# SPDX-License-Identifier: BSD-3-Clause
# What the tests of packages share; each is called with the folder of the project and that of a release of it.
# shellcheck shell=sh
project=$1
released=$2
here=$project/tests/packaging
version=$(sed -n 's/^version: //p' "$project/kelvane.build")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export SOURCE_DATE_EPOCH=1700000000

# expect WHAT COMMAND...: the command succeeds
expect() {
  what=$1
  shift
  "$@" >"$work/log" 2>&1 || { cat "$work/log" && echo "failed: $what" && exit 1; }
}

# octave FOLDER COMMAND: in an Octave that knows only this one
octave() { octave-cli --norc --no-history --no-window-system -q --path "$1" --path "$here/octave" --eval "$2"; }

# What is built from what, and where it goes, is tested here, so the code need not be fast; Clang has it soonest, and
# the Octave package is made by the compiler that users have.
compiler=${3:-c++}
if [ -z "${KELVANE_LONG:-}" ]; then
  case ${0##*/} in octave_install_test) ;; *) compiler=$(command -v clang++ || echo "$compiler") ;; esac
  printf '#!/bin/sh\nexec "%s" "$@" -O0\n' "$compiler" >"$work/fast_compiler"
  printf 'set(CMAKE_UNITY_BUILD ON)\nset(CMAKE_UNITY_BUILD_BATCH_SIZE 30)\n' >"$work/several_files_at_once.cmake"
  chmod +x "$work/fast_compiler"
  compiler=$work/fast_compiler
  export CMAKE_TOOLCHAIN_FILE="$work/several_files_at_once.cmake"
fi
export CXX="$compiler"
