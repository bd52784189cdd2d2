# What the scripts say while they work: which step runs, how long it took.
# To be sourced.

started_at=$SECONDS

# say TEXT...: one line of progress, with the seconds since the start.
say() {
  printf '[%4ds] %s\n' $((SECONDS - started_at)) "$*"
}

# fail TEXT...: says why and ends the script.
fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# quietly NAME COMMAND...: runs a long command with its output in build/logs/NAME.log,
# says how long it took, and shows the end of that log when it fails.
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
