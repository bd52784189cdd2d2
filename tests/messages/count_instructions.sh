#!/usr/bin/env bash
# usage: count_instructions.sh PROGRAM LIMIT
#
# Fails when taking one frame (parse, envelope, record, handler, release) takes
# more than LIMIT instructions. Unlike a time they are the same on every run; the
# difference of two runs leaves out what starting the program takes.
set -euo pipefail
program=$1
limit=$2

# instructions ROUNDS: of a whole run.
instructions() {
  local report
  report=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" 2>&1)
  grep --only-matching --perl-regexp 'Collected : \K[0-9]+' <<<"$report"
}

few=$(instructions 100)
many=$(instructions 600)
frame=$(((many - few) / (500 * 4)))
echo "$frame instructions a frame, at most $limit"
if ((frame <= 0 || frame > limit)); then
  echo "0 passed, 1 failed"
  exit 1
fi
echo "1 passed, 0 failed"
