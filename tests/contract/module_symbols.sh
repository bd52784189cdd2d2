#!/usr/bin/env bash
# module_symbols.sh MODULE CRASH-PROGRAM [EMULATOR]: the DLL holds no symbols, but links to a
# file that does. Makes the DLL crash, and finds the line of the source for the address.
set -euo pipefail
module=$1 crash=$2
emulator=("${@:3}")
source "$(dirname "$0")/../../scripts/cases.sh"
tool=x86_64-w64-mingw32
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The address at which the linker placed the image.
image_base() {
  $tool-objdump -p "$module" | awk '$1 == "ImageBase" {print $2}'
}

# symbol NAME: prints its address from the debug file.
symbol() {
  $tool-nm -C "$module.debug" | awk -v name="$1\$" '$0 ~ name {print $1}'
}

# Prints the machine code of the threads' entry, up to the next symbol, without the symbols'
# names: the DLL has none.
thread_entry() {
  local start next
  start=$(symbol 'ThreadMain\(void\*\)')
  next=$($tool-nm -n "$module.debug" | awk -v start="$start" '$2 == "t" && ($1 "") > (start "") {print $1; exit}')
  $tool-objdump -d --no-show-raw-insn --start-address="0x$start" --stop-address="0x$next" "$module"
}

# Prints the name in the DLL's link, and whether its checksum is that of the debug file.
debug_link() {
  $tool-objcopy --dump-section ".gnu_debuglink=$work/link" "$module" "$work/copy"
  python3 -c "
import zlib
link = open('$work/link', 'rb').read()
checksum = zlib.crc32(open('$module.debug', 'rb').read())
print(link.split(b'\\0')[0].decode(), 'same checksum' if int.from_bytes(link[-4:], 'little') == checksum else 'other')"
}

crash_line() {
  local offset place
  offset=$("${emulator[@]}" "$crash" "$module" </dev/null | tr -d '\r' || true)
  place=$($tool-addr2line -e "$module.debug" "$(printf '0x%x' $((0x$(image_base) + 0x$offset)))")
  sed -n "${place##*:}{s/^ *//;p}" "$(dirname "$0")/../../${place%:*}"
}

expect "the DLL has no debug sections and no symbols" \
  "$($tool-objdump -h "$module" | grep -c '\.debug_' || true) $($tool-nm "$module" 2>&1 | grep -c . || true)" "0 1"
expect "the DLL links to the file with its symbols" "$(debug_link)" "$(basename "$module.debug") same checksum"
expect "the address of a crash leads to its line" "$(crash_line)" '*errorStatus = SNMP_ERRORSTATUS_NOERROR;'
# See CheckThreadEntry.cmake. The linker optimises the DLL once more.
set_event=$(symbol __imp_SetEvent | sed 's/^0*//')
expect "the DLL's threads end in a jump to SetEvent" \
  "$(thread_entry | grep -oE "(jmp|call) .*# 0x$set_event" | sed 's/ .*//')" jmp
close_cases
