# What the commands print while they work: help, the step that runs, its time.
# To be sourced.

started_at=$SECONDS

# is_help ARGUMENT
is_help() {
  [[ "$1" == -h || "$1" == --help ]]
}

# Prints the comment at the head of the command, up to its first line of code.
print_help() {
  sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$0"
}

# say TEXT...: one line of progress, with the seconds since the start.
say() {
  printf '[%4ds] %s\n' $((SECONDS - started_at)) "$*"
}

# fail TEXT...: prints the reason and ends the command with status 1.
fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# quietly NAME COMMAND...: runs a long command with its output in build/logs/NAME.log
# and prints its time. If the command fails, prints the end of that log.
quietly() {
  local name=$1 log="$top/build/logs/$1.log" began=$SECONDS status=0
  shift
  mkdir -p "$top/build/logs"
  say "$name ..."
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if ((status != 0)); then
    say "$name FAILED after $((SECONDS - began)) s; the end of $log:"
    tail -n 40 "$log"
    return "$status"
  fi
  say "$name done in $((SECONDS - began)) s"
}
