# A private Wine prefix, and one Wine process that is kept alive: the first
# program to start in a prefix waits seconds for Wine's services, the ones
# beside it start at once. To be sourced after console.sh.

export WINEPREFIX=${CORVANE_WINEPREFIX:-$top/build/wine-prefix}
export WINEDEBUG=-all
export WINEARCH=win64
# No crash dialogue, no offers to install Mono and Gecko.
export WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d'

wine_holder=

create_wine_prefix() {
  rm -rf "$WINEPREFIX"
  wineboot -i
  wineserver -w
  touch "$WINEPREFIX/.prepared"
}

# One at a time: tests that run side by side may each be the first to need it. The
# lock is kept from Wine's own processes, which outlive this.
prepare_wine_prefix() {
  mkdir -p "$(dirname "$WINEPREFIX")"
  (
    flock 9
    [[ -e "$WINEPREFIX/.prepared" ]] || quietly wine-prefix create_wine_prefix 9>&-
  ) 9>"$WINEPREFIX.lock"
}

# Ended by stop_wine_holder. Wine's services run when this returns, and none of them
# has an output of the caller's: they live on, and whoever read it would wait for
# its end.
start_wine_holder() {
  local pipe="$WINEPREFIX/holder.pipe"
  rm -f "$pipe"
  mkfifo "$pipe"
  # The pipe's writing end stays open with the Wine process itself, so that
  # the command interpreter waits for a line that never comes.
  wine cmd.exe <>"$pipe" >/dev/null 2>&1 &
  wine_holder=$!
  wine cmd.exe /c exit </dev/null >/dev/null 2>&1
}

stop_wine_holder() {
  [[ -n "$wine_holder" ]] || return 0
  kill "$wine_holder" 2>/dev/null || true
  wait "$wine_holder" 2>/dev/null || true
  wine_holder=
}
