# SPDX-License-Identifier: BSD-3-Clause
# What the packages are made of; to be sourced in the project's folder, behind scripts/functions.sh.
# shellcheck shell=sh

# None of the caller's settings gets into a package, but for the compiler, the date, and where things and the net are.
if [ -z "${KELVANE_PACKAGING:-}" ]; then
  cd "$caller"
  set -- sh "$0" "$@"
  for kept in TMPDIR CXX CMAKE_PREFIX_PATH CMAKE_TOOLCHAIN_FILE OpenCV_DIR KELVANE_ALONE SOURCE_DATE_EPOCH http_proxy https_proxy no_proxy; do
    eval "set -- \${$kept:+\"$kept=\$$kept\"} \"\$@\""
  done
  exec env -i KELVANE_PACKAGING=1 LC_ALL=C TZ=UTC0 PATH="$PATH" HOME="${HOME:-}" "$@"
fi
umask 022  # the modes of what is installed are part of the bits

# Whoever owns the folder: these are the sources whose scripts are running.
project_git() { [ -e .git ] && git -c safe.directory='*' "$@" 2>/dev/null; }

# Seconds since 1970 that all files of a package get: SOURCE_DATE_EPOCH, or the last commit, or the last change.
seconds=${SOURCE_DATE_EPOCH:-$(project_git log -1 --format=%ct || date -r CHANGELOG.md +%s)}
version=$(sed -n 's/^version: //p' kelvane.build)
home=$(sed -n 's/^home: //p' kelvane.build)

# stage FOLDER PATH...: copies files, and of folders what is text of ours, below FOLDER
stage() {
  staged=$1
  shift
  find "$@" -type f ! -name '.*' ! -name '*.mex*' ! -name '*.o' ! -name 'octave-workspace' -print0 >"$work/list"
  copy_listed "$staged"
}

# copy_listed FOLDER: copies the files of $work/list, which ends each name with a zero, below FOLDER
copy_listed() {
  mkdir -p "$1"
  xargs -0 -a "$work/list" cp -P --parents -t "$1" --
}

# stage_sources FOLDER: all that the modules are built from
stage_sources() {
  # shellcheck disable=SC2046 # names of folders
  stage "$1" LICENSE kelvane.build kelvane.map kelvane_mex.cpp kelvane_engine.cpp old_libraries.cpp $(module_folders)
}

# stage_functions FOLDER: the m-files for daily use with their demos, without what builds the modules
stage_functions() {
  (cd matlab && stage "$1" .)
  stage "$1" examples
  rm -r "$1/examples/cpp" "$1"/kelvane_build.m "$1"/private/build_*.m "$1/buildfile.m" "$1/functionSignatures.json"
  sed '/^% Building$/,/^%$/d' matlab/Contents.m >"$1/Contents.m"
}

# filled FILE [CHECKSUM]: a file of this folder with version, date and place of the project in it
filled() {
  sed -e "s|@VERSION@|$version|g" -e "s|@HOME@|$home|g" -e "s|@SHA256@|${2:-}|" \
    -e "s|@DATE@|$(date -d "@$seconds" +%F)|g" "packaging/$1"
}

# archive FOLDER FILE: a .tar.gz of it, the same bits whenever, wherever and by whomever it is made
archive() {
  tar -C "${1%/*}" --sort=name --format=ustar --owner=0 --group=0 --numeric-owner --mtime="@$seconds" --mode='u=rwX,go=rX' \
    -I 'gzip -9n' -cf "$2" "${1##*/}"
}
