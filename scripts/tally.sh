# Counts the test cases of all programs and steps. To be sourced after console.sh.

# begin_tally: from zero. A process that counts for itself calls it, because it inherits
# the counts of the process that started it.
begin_tally() {
  total_passed=0
  total_failed=0
  complaints=()
}
begin_tally

# add_tally STEP: reads the lines of tally.awk from standard input. What a program said of
# its failures is printed here only, and not again at the end.
add_tally() {
  local passed failed line
  read -r passed failed
  total_passed=$((total_passed + passed))
  total_failed=$((total_failed + failed))
  say "$1: $passed passed, $failed failed"
  while IFS= read -r line; do
    [[ "$line" == ' '* ]] || complaints+=("$1: $line")
    say "  $line"
  done
}

# add_failure TEXT: counts one failed case, for a step that cannot be built or prepared.
add_failure() {
  total_failed=$((total_failed + 1))
  complaints+=("$1")
}

# run_ctest STEP BUILD-FOLDER CTEST-ARGUMENTS...: runs the programs of ctest, prints the
# result of each one, and adds their cases.
run_ctest() {
  local step=$1 folder=$2 log="$top/build/logs/$1.log"
  shift 2
  mkdir -p "$top/build/logs"
  say "$step ..."
  ctest --test-dir "$folder" --verbose -j4 "$@" </dev/null 2>&1 | tee "$log" |
    grep --line-buffered -aE '^ *[0-9]+/[0-9]+ Test' || true
  grep -qaE '^ *[0-9]+/[0-9]+ Test' "$log" || fail_step "$step" "no test ran; see $log"
  add_tally "$step" < <(awk -f "$top/scripts/tally.awk" "$log")
}

fail_step() {
  say "$1: $2"
  add_failure "$1: $2"
}

# run_program STEP COMMAND...: runs one program that ends with a line "N passed, N failed",
# prints its output, and adds its cases.
run_program() {
  local step=$1 log="$top/build/logs/$1.log" status=0
  shift
  mkdir -p "$top/build/logs"
  say "$step ..."
  "$@" </dev/null 2>&1 | tee "$log" || status=${PIPESTATUS[0]}
  add_tally "$step" < <(awk -v single="$step" -v status="$status" -f "$top/scripts/tally.awk" "$log")
}

# keep_tally FILE: writes the count of a part that runs in a process of its own.
keep_tally() {
  {
    echo "$total_passed $total_failed"
    ((${#complaints[@]} == 0)) || printf '%s\n' "${complaints[@]}"
  } >"$1"
}

# add_kept_tally FILE: adds the count of such a part, and removes the file. Without the
# file the part did not reach its end.
add_kept_tally() {
  local passed failed line
  [[ -e "$1" ]] || { fail_step "$(basename "$1" .tally)" "did not end in order"; return; }
  {
    read -r passed failed
    while read -r line; do complaints+=("$line"); done
  } <"$1"
  total_passed=$((total_passed + passed))
  total_failed=$((total_failed + failed))
  rm "$1"
}

# close_tally: prints the last line; status 1 if anything failed.
close_tally() {
  local line
  for line in "${complaints[@]}"; do
    echo "FAILED $line"
  done
  echo "$total_passed passed, $total_failed failed"
  ((total_failed == 0 && total_passed > 0))
}
