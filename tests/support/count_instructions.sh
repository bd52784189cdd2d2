#!/usr/bin/env bash
# usage: count_instructions.sh LIMIT PROGRAM [ARGUMENT]...
#
# Runs PROGRAM with its arguments and, as the last one, how often it is to do
# what it does. Fails when doing it once takes more than LIMIT instructions.
# Unlike a time they hardly differ from run to run; the difference of two runs
# leaves out what starting the program takes.
set -euo pipefail
limit=$1
shift
readonly few=400 many=2400

# instructions TIMES PROGRAM [ARGUMENT]...: of a whole run.
instructions() {
  local times=$1 report
  shift
  report=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" "$times" 2>&1)
  grep --only-matching --perl-regexp 'Collected : \K[0-9]+' <<<"$report"
}

least=$(instructions "$few" "$@")
most=$(instructions "$many" "$@")
once=$(((most - least) / (many - few)))
echo "$once instructions each time, at most $limit"
if ((once <= 0 || once > limit)); then
  echo "0 passed, 1 failed"
  exit 1
fi
echo "1 passed, 0 failed"
