# Test cases in a bash script: each compares one answer whole. To be sourced.
#
#   expect NAME ACTUAL EXPECTED    one case; prints both when they differ
#   close_cases                    the closing line; status 1 if a case failed

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

# expect_eventually NAME EXPECTED COMMAND...: asks again and again until the
# command prints what is expected. Two minutes are more than a busy machine needs
# for anything; how soon things come is measured elsewhere, by clocks.
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
