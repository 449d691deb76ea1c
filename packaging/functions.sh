# SPDX-License-Identifier: BSD-3-Clause
# What both packages are made of; to be sourced in the project's folder.
# shellcheck shell=sh

project_version() { sed -n 's/^project(kelvane VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt; }

# Seconds since 1970 that all files of a package get: SOURCE_DATE_EPOCH, or the last commit, or the last change.
source_date() {
  if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
    echo "$SOURCE_DATE_EPOCH"
  else
    git log -1 --format=%ct 2>/dev/null || date -r CHANGELOG.md +%s
  fi
}

# stage FOLDER PATH...: copies files, and of folders what is text of ours, below FOLDER
stage() {
  target=$1
  shift
  find "$@" -type f ! -name '.*' ! -name '*.mex*' ! -name '*.o' ! -name 'octave-workspace' | while read -r file; do
    mkdir -p "$target/$(dirname "$file")"
    cp "$file" "$target/$file"
  done
}

# stage_module FOLDER: all that CMake or kelvane_build needs to build the module
stage_module() {
  stage "$1" CMakeLists.txt LICENSE kelvane_mex.cpp cmake fw_tools fw_opt camera_pose pose_refinement self_contained \
    scripts/opencv_core matlab/kelvane_mex.m
}

# archive FOLDER FILE SECONDS: the same bits whenever, wherever and by whomever it is called
archive() {
  find "$1" -type d -exec chmod 755 {} +
  find "$1" -type f -exec chmod 644 {} +
  tar -C "$(dirname "$1")" --sort=name --format=ustar --owner=0 --group=0 --numeric-owner --mtime="@$3" \
    -cf - "$(basename "$1")" | gzip -9n >"$2"
}
