# SPDX-License-Identifier: BSD-3-Clause
# What both packages are made of; to be sourced in the project's folder.
# shellcheck shell=sh

project_version() { sed -n 's/^project(kelvane VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt; }

# Seconds since 1970 that all files of a package get: SOURCE_DATE_EPOCH, or the last commit, or the last change.
source_date() {
  if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
    echo "$SOURCE_DATE_EPOCH"
  else
    { [ -e .git ] && git log -1 --format=%ct 2>/dev/null; } || date -r CHANGELOG.md +%s
  fi
}

# stage FOLDER PATH...: copies files, and of folders what is text of ours, below FOLDER
stage() {
  staged=$1
  shift
  mkdir -p "$staged"
  find "$@" -type f ! -name '.*' ! -name '*.mex*' ! -name '*.o' ! -name 'octave-workspace' | tar -cf - -T - |
    tar -xf - -C "$staged"
}

# stage_module FOLDER: all that CMake or kelvane_build needs to build the module
stage_module() {
  stage "$1" CMakeLists.txt LICENSE kelvane_mex.cpp cmake fw_tools fw_opt camera_pose pose_refinement self_contained \
    scripts/functions.sh scripts/opencv_core matlab/kelvane_mex.m
}

# stage_functions FOLDER: the m-files for daily use with their demos, without what builds the module
stage_functions() {
  (cd matlab && stage "$1" .)
  stage "$1" examples
  rm -r "$1/examples/cpp"
  rm -f "$1"/kelvane_build.m "$1"/private/build_*.m "$1"/buildfile.m "$1"/functionSignatures.json
  sed '/^% Building$/,/^%$/d' matlab/Contents.m >"$1/Contents.m"
}

# tidy FOLDER SECONDS: the same modes and times whoever has made the files
tidy() {
  find "$1" -type d -exec chmod 755 {} +
  find "$1" -type f -perm -u+x -exec chmod 755 {} +
  find "$1" -type f ! -perm -u+x -exec chmod 644 {} +
  find "$1" -exec touch -h -d "@$2" {} +
}

# archive FOLDER FILE SECONDS: the same bits whenever, wherever and by whomever it is called
archive() {
  tidy "$1" "$3"
  tar -C "$(dirname "$1")" --sort=name --format=ustar --owner=0 --group=0 --numeric-owner --mtime="@$3" \
    -cf - "$(basename "$1")" | gzip -9n >"$2"
}

# zip_archive FOLDER FILE SECONDS: the same as a zip, whose times are those of the clock on the wall
zip_archive() {
  tidy "$1" "$3"
  rm -f "$2"
  case $2 in /*) zip_file=$2 ;; *) zip_file=$PWD/$2 ;; esac
  (cd "$(dirname "$1")" && find "$(basename "$1")" -type f | LC_ALL=C sort | TZ=UTC zip -9 -X -q -@ "$zip_file")
}
