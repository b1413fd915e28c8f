#!/bin/sh
# Runs a Windows program in a Wine of its own, away from the user's: no menu entries, no offers to
# download Mono or Gecko, no chatter. 32-bit programs run in the private root of scripts/wine-root,
# 64-bit ones in the machine's wine64, which cannot run the others.
# Usage: run-in-wine.sh <folder for Wine's files> <program> [argument ...]
# Exit code: the program's, or 77 when there is no Wine for it here.
set -eu
folder=$1
program=$2
shift

# The field `Machine` behind the signature, whose place stands in the old header.
header=$(od -An -tu4 -j60 -N4 "$program")
machine=$(od -An -tx2 -j$((header + 4)) -N2 "$program" | tr -d ' ')
if [ "$machine" = 014c ]; then
  exec "$(dirname "$0")/../scripts/wine-run" --prefix "$folder" "$@"
fi
if ! wine=$(PATH="$PATH:/usr/lib/wine" command -v wine64); then
  echo "run-in-wine.sh: NOT RUN: $program: wine64 is not installed" >&2
  exit 77
fi
export WINEPREFIX="$folder"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=;${WINEDLLOVERRIDES-}"
exec "$wine" "$@"
