# Shared by the installer's tests. Source it with the arguments of the test:
# WORK-FOLDER VERSION ENTERPRISE.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$top/scripts/cases.sh"
work=$1 version=$2 enterprise=$3
old_version=0.0.1
new_version=99.0.0

# msi_of VERSION: prints the path of the package that build-packages built.
msi_of() {
  echo "$work/packages/corvane-snmp-agent-$1-x64.msi"
}

# expect_same_file NAME FILE FILE: one test case.
expect_same_file() {
  expect "$1" "$(cmp "$2" "$3" 2>&1 && echo same)" same
}

# payload_list [LIST]: prints source and place of every file in the package, separated
# by a tab.
payload_list() {
  PYTHONDONTWRITEBYTECODE=1 python3 "$top/installer/payload.py" "$@"
}
