# SPDX-License-Identifier: BSD-3-Clause
# What the scripts share. Each goes to the project's folder first, so $OLDPWD is where its caller stands.
# shellcheck shell=sh
caller=$OLDPWD
work=
beside=

# absolute PATH: as the caller means it
absolute() { case $1 in /*) printf '%s\n' "$1" ;; *) printf '%s\n' "$caller/$1" ;; esac; }
[ -z "${TMPDIR:-}" ] || TMPDIR=$(absolute "$TMPDIR")

# refuse SENTENCE: what the caller has given cannot be used, and nothing has been changed
refuse() {
  printf '%s: %s\n' "${0##*/}" "$1" >&2
  exit 2
}

# misused SENTENCE: the same, with the call, which is the start of a script's third line
misused() { refuse "$1; the call is $(sed -n '3s/^# \([^:]*\):.*/\1/p' "$(absolute "$0")")"; }

# takes NUMBER ARGUMENT...: refuses options, and more arguments than a script takes
takes() {
  most=$1
  shift
  for argument in "$@"; do
    case $argument in -*) misused "there is no option $argument" ;; esac
  done
  [ $# -le "$most" ] || misused "there is nothing to do with a further argument, $argument"
}

# quietly LOG COMMAND...: runs a command with its output in a file, and shows that only when the command fails
quietly() {
  log=$1
  shift
  "$@" >"$log" 2>&1 || {
    status=$?
    cat "$log" >&2
    return "$status"
  }
}

# lock FILE: waits until no other script has it locked; it stays so until this one has ended, and all that this one calls
lock() {
  exec 9<"$1"
  command -v flock >/dev/null || return 0
  flock -n 9 || {
    echo "${0##*/}: waiting for another script to be done with $1" >&2
    flock 9 || true  # a file system may know no locks
  }
}

# alone WORK: goes on when no other script is at that work in the folder build; those that this one calls are part of it
alone() {
  waits_at=$(pwd -P)/build/.$1.lock
  [ "${KELVANE_ALONE:-}" != "$waits_at" ] || return 0
  { mkdir -p build && echo >"$waits_at"; } 2>/dev/null ||
    refuse "nothing can be written in $PWD/build; make room there, or copy the project to where you may write"
  lock "$waits_at"
  export KELVANE_ALONE="$waits_at"
}

# module_folders: those whose sources the modules are made of
module_folders() { sed -nE 's/^(both|kelvane_[a-z]+): //p' kelvane.build | tr '\n' ' '; }

# build_in FOLDER: makes ready a folder to build in, and empties it where the last one was killed: half-written files look
# newer than their sources
build_in() {
  unfinished=$1/.unfinished
  [ ! -e "$unfinished" ] || rm -rf "$1"
  mkdir -p "$1"
  : >"$unfinished"
  trap 'rm -f "$unfinished"' EXIT
  trap 'exit 130' HUP INT TERM
}

# make_work: a private folder, $work, which is gone when the script ends
make_work() {
  trap 'rm -rf "$work" "$beside"' EXIT
  trap 'exit 130' HUP INT TERM
  work=$(mktemp -d) || refuse "no temporary folder can be made in ${TMPDIR:-/tmp}; let TMPDIR name one that is there"
}

# claim PATH DEFAULT: $target, where a file or a folder is to lie; DEFAULT, in the folder build, where PATH is empty. What is
# there already has to be an empty folder, one that holds $mark, or a file in build.
mark=.made_by_kelvane
claim() {
  if [ -n "$1" ]; then target=$(absolute "$1"); else
    alone build
    target=$PWD/$2
  fi
  [ ! -d "$target" ] || target=$(cd "$target" && pwd -P)
  parent=$(dirname "$target")
  [ -d "$parent" ] || refuse "there is no folder $parent"
  if [ -d "$target" ]; then
    ! mountpoint -q "$target" 2>/dev/null || refuse "something is mounted at $target; name a folder in it"
    [ -e "$target/$mark" ] || [ -z "$(ls -A "$target")" ] ||
      refuse "$target holds what this script has not made, or never replaces; name a folder that is new or empty"
  elif [ -e "$target" ]; then
    case $target in "$PWD"/build/*) ;; *) refuse "$target is there already; name another folder, or move it" ;; esac
  fi
  make_work
  { beside=$(mktemp -d "$parent/.kelvane.XXXXXX") && echo >"$beside/probe"; } 2>/dev/null ||
    refuse "nothing can be written in $parent; name a folder where you may write and where there is room"
}

# place FILE_OR_FOLDER: puts it where claim has said, whole or not at all
place() {
  cp -R "$1" "$beside/new" && (
    lock "$parent"
    trap '' HUP INT TERM
    { [ ! -e "$target/$mark" ] || mv -T "$target" "$beside/old"; } && mv -T "$beside/new" "$target"
  ) || refuse "$target cannot be written; name a folder where you may write and where there is room"
}
