#!/usr/bin/env bash
# same_image.sh DLL SOURCES: copies the sources to another folder, builds SNMPd.dll
# there with the settings of the build of DLL, and compares the two files byte by byte.
set -euo pipefail
dll=$(realpath "$1")
sources=$(realpath "$2")
source "$(dirname "$0")/../../scripts/cases.sh"

copy=$(mktemp -d "${TMPDIR:-/tmp}/corvane-in-a-folder-of-another-name.XXXXXX")
trap 'rm -rf "$copy"' EXIT

setting() {
  sed -n "s/^$1:[A-Z]*=//p" "$(dirname "$dll")/CMakeCache.txt"
}

tar -C "$sources" --exclude=./build --exclude=./.git -cf - . | tar -C "$copy" -xf -
cd "$copy"
cmake --preset windows -DCORVANE_TESTS=OFF -DCORVANE_ENTERPRISE="$(setting CORVANE_ENTERPRISE)" \
  > configure.log
cmake --build --preset windows --target SNMPd > build.log || { tail -n 30 build.log; exit 1; }
expect "same bytes from another folder" "$(cmp "$dll" build/windows/SNMPd.dll && echo same)" "same"
expect "same symbols from another folder" "$(cmp "$dll.debug" build/windows/SNMPd.dll.debug && echo same)" "same"
close_cases
