#!/usr/bin/env bash
# module_image.sh MODULE VERSION: checks the file of the module. SNMPd.dll and SNMPd.so
# export the three entry points and nothing else. The DLL imports only Windows' own
# libraries, is hardened and small, and contains its version.
set -euo pipefail
module=$1
version=$2
source "$(dirname "$0")/../../scripts/cases.sh"

contract=$'SnmpExtensionInit\nSnmpExtensionQuery\nSnmpExtensionTrap'

dll_exports() {
  x86_64-w64-mingw32-objdump -p "$module" |
    awk '/\[Ordinal\/Name Pointer\] Table/ { on = 1; next } on && NF == 0 { exit } on { print $NF }' |
    sort
}

dll_imports() {
  x86_64-w64-mingw32-objdump -p "$module" | awk '/DLL Name:/ { print tolower($3) }' | sort -u
}

# Imported libraries that are no part of Windows.
foreign_imports() {
  dll_imports |
    grep -vxE '(advapi32|kernel32|msvcrt|ole32|shell32|snmpapi|user32|ws2_32)\.dll' || true
}

characteristics() {
  x86_64-w64-mingw32-objdump -p "$module" |
    grep -oE 'HIGH_ENTROPY_VA|DYNAMIC_BASE|NX_COMPAT' | sort -u | tr '\n' ' '
}

time_stamp() {
  TZ=UTC x86_64-w64-mingw32-objdump -p "$module" | sed -n 's/^Time\/Date		*//p' | tr -s ' '
}

# The texts of the version resource are UTF-16.
version_texts() {
  strings -el "$module" | grep -A1 -xE 'FileVersion|ProductVersion' | grep -v -- '^--$'
}

# The machine code of the C++ library is most of what is not ours, and grows easily.
kMostBytes=300000

so_exports() {
  nm --dynamic --defined-only "$module" | awk '{ print $NF }' | sort
}


if [[ "$module" == *.dll ]]; then
  expect "exactly the three exports" "$(dll_exports)" "$contract"
  expect "no library but Windows' own" "$(foreign_imports)" ""
  expect "address space layout and data execution protected" "$(characteristics)" \
    "DYNAMIC_BASE HIGH_ENTROPY_VA NX_COMPAT "
  expect "no time stamp" "$(time_stamp)" "Thu Jan 1 00:00:00 1970"
  expect "at most $kMostBytes bytes" "$(stat -c '%s' "$module" | awk -v most=$kMostBytes '$1 > most')" ""
  expect "version resource" "$(version_texts)" \
    $'FileVersion\n'"$version"$'\nProductVersion\n'"$version"
else
  expect "exactly the three exports" "$(so_exports)" "$contract"
fi
close_cases
