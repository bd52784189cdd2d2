# What the installer's tests share. To be sourced with their arguments:
# WORK-FOLDER VERSION ENTERPRISE.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$1 version=$2 enterprise=$3
old_version=0.0.1
new_version=99.0.0
passed=0
failed=0

# msi_of OLD|CURRENT|NEW version: the package that build-packages made.
msi_of() {
  echo "$work/packages/corvane-snmp-agent-$1-x64.msi"
}

# expect NAME FOUND WANTED: one case.
expect() {
  if [[ "$2" == "$3" ]]; then
    passed=$((passed + 1))
    echo "ok      $1"
  else
    failed=$((failed + 1))
    printf 'FAILED  %s\n  found:  %.2000s\n  wanted: %.2000s\n' "$1" "$2" "$3"
  fi
}

# expect_same_file NAME FILE FILE: one case.
expect_same_file() {
  expect "$1" "$(cmp "$2" "$3" 2>&1 && echo same)" same
}

# The last line of every test, and its exit status.
close_cases() {
  echo "$passed passed, $failed failed"
  ((failed == 0 && passed > 0))
}

# payload_list [LIST]: source and place of every file in the package, tabulated.
payload_list() {
  PYTHONDONTWRITEBYTECODE=1 python3 "$top/installer/payload.py" "$@"
}
