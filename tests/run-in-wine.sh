#!/bin/sh
# Runs a Windows program in a Wine of its own, away from the user's: no menu entries, no offers to
# download Mono or Gecko, no chatter.
# Usage: run-in-wine.sh <wine> <folder for Wine's files> <program> [argument ...]
set -eu
wine=$1
export WINEPREFIX="$2"
shift 2
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
exec "$wine" "$@"
