#!/usr/bin/env bash
# usage: count_instructions.sh LIMIT PROGRAM [ARGUMENT]...
#
# Runs PROGRAM with its arguments and a number as the last one: PROGRAM repeats its work
# that many times. Fails if one repetition needs more than LIMIT instructions. Unlike a
# time, their number hardly differs from run to run. The difference of two runs leaves
# out the start of the program.
set -euo pipefail
limit=$1
shift
readonly few=400 many=2400

# instructions TIMES PROGRAM [ARGUMENT]...: prints the instructions of a whole run.
instructions() {
  local times=$1 report
  shift
  report=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" "$times" 2>&1)
  grep --only-matching --perl-regexp 'Collected : \K[0-9]+' <<<"$report"
}

least=$(instructions "$few" "$@")
most=$(instructions "$many" "$@")
once=$(((most - least) / (many - few)))
echo "$once instructions for each repetition, the limit is $limit"
if ((once <= 0 || once > limit)); then
  echo "0 passed, 1 failed"
  exit 1
fi
echo "1 passed, 0 failed"
