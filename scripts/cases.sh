# Test cases in a bash script: each compares a whole text. To be sourced.
#
#   expect NAME ACTUAL EXPECTED    one case; prints both if they differ
#   expect_success NAME COMMAND... one case; prints the output of a command that fails
#   close_cases                    prints the closing line; status 1 if a case failed

cases_passed=0
cases_failed=0
cases_show_passed=true

expect() {
  if [[ "$2" == "$3" ]]; then
    cases_passed=$((cases_passed + 1))
    [[ "$cases_show_passed" == false ]] || echo "ok      $1"
  else
    cases_failed=$((cases_failed + 1))
    printf 'FAILED  %s\n  expected: %s\n  got:      %s\n' "$1" "$3" "$2"
  fi
}

expect_success() {
  local name=$1 status=0 said
  shift
  said=$("$@" 2>&1) || status=$?
  ((status != 0)) || said=''
  expect "$name" "status $status$said" 'status 0'
}

# expect_eventually NAME EXPECTED COMMAND...: repeats the command until it prints the
# expected text. It gives up after two minutes, which is enough on a busy machine. Other
# tests measure how soon things happen.
expect_eventually() {
  local deadline=$((SECONDS + 120)) name=$1 expected=$2 actual
  shift 2
  until actual=$("$@" 2>&1) && [[ "$actual" == "$expected" ]]; do
    ((SECONDS < deadline)) || break
    sleep 0.1
  done
  expect "$name" "$actual" "$expected"
}

close_cases() {
  echo "$cases_passed passed, $cases_failed failed"
  ((cases_failed == 0 && cases_passed > 0))
}
