# SPDX-License-Identifier: BSD-3-Clause
# What the packages are made of; to be sourced in the project's folder, behind scripts/functions.sh.
# shellcheck shell=sh

# None of the caller's settings gets into a package, but for the compiler, the date, and where things are.
if [ -z "${KELVANE_PACKAGING:-}" ]; then
  set -- sh "$0" "$@"
  for name in PATH HOME TMPDIR CXX CMAKE_PREFIX_PATH OpenCV_DIR SOURCE_DATE_EPOCH KELVANE_ALONE; do
    eval "value=\${$name:-}"
    [ -z "$value" ] || set -- "$name=$value" "$@"
  done
  cd "$caller"
  exec env -i KELVANE_PACKAGING=1 LC_ALL=C TZ=UTC0 "$@"
fi
umask 022  # the modes of what is installed are part of the bits

version=$(sed -n 's/^version: //p' kelvane.build)

# Whoever owns the folder: these are the sources whose scripts are running.
project_git() { git -c safe.directory='*' "$@"; }

# Seconds since 1970 that all files of a package get: SOURCE_DATE_EPOCH, or the last commit, or the last change.
source_date() {
  if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
    echo "$SOURCE_DATE_EPOCH"
  else
    { [ -e .git ] && project_git log -1 --format=%ct 2>/dev/null; } || date -r CHANGELOG.md +%s
  fi
}
seconds=$(source_date)

# copy_listed FOLDER: copies the files of $work/list, which ends each name with a zero, below FOLDER
copy_listed() {
  mkdir -p "$1"
  xargs -0 -a "$work/list" cp -P --parents -t "$1" --
}

# stage FOLDER PATH...: copies files, and of folders what is text of ours, below FOLDER
stage() {
  staged=$1
  shift
  find "$@" -type f ! -name '.*' ! -name '*.mex*' ! -name '*.o' ! -name 'octave-workspace' -print0 >"$work/list"
  copy_listed "$staged"
}

# stage_sources FOLDER: all that the modules are built from
stage_sources() {
  # shellcheck disable=SC2046 # names of folders
  stage "$1" LICENSE kelvane.build kelvane.map kelvane_mex.cpp kelvane_engine.cpp old_libraries.cpp \
    $(module_folders)
}

# stage_functions FOLDER: the m-files for daily use with their demos, without what builds the modules
stage_functions() {
  (cd matlab && stage "$1" .)
  stage "$1" examples
  rm -r "$1/examples/cpp"
  rm -f "$1"/kelvane_build.m "$1"/private/build_*.m "$1"/buildfile.m "$1"/functionSignatures.json
  sed '/^% Building$/,/^%$/d' matlab/Contents.m >"$1/Contents.m"
}

# archive FOLDER FILE: a .zip or .tar.gz of it, the same bits whenever, wherever and by whomever it is made. It is read back
# and compared before it counts.
archive() {
  find "$1" -type d -exec chmod 755 {} +
  find "$1" -type f -perm -u+x -exec chmod 755 {} +
  find "$1" -type f ! -perm -u+x -exec chmod 644 {} +
  find "$1" -exec touch -h -d "@$seconds" {} +
  case $2 in
    *.zip)
      (cd "${1%/*}" && find "${1##*/}" -type f) >"$work/list"
      sort -o "$work/list" "$work/list"
      (cd "${1%/*}" && zip -9 -X -q -@ "$2" <"$work/list")
      ;;
    *)
      tar -C "${1%/*}" --sort=name --format=ustar --owner=0 --group=0 --numeric-owner --mtime="@$seconds" -I 'gzip -9n' \
        -cf "$2" "${1##*/}"
      ;;
  esac
  mkdir "$work/read_back"
  (cd "$work/read_back" && cmake -E tar xf "$2")
  diff -r "$1" "$work/read_back/${1##*/}"
  rm -r "$work/read_back"
}
