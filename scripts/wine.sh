# A private Wine prefix, and one Wine process that keeps Wine's services running. Without
# it each program waits seconds for them. To be sourced after console.sh.

export PATH=$top/scripts/bin:$PATH  # its wine runs the system's one at fixed addresses
export WINEPREFIX=${CORVANE_WINEPREFIX:-$top/build/wine-prefix}
export WINEDEBUG=-all
export WINEARCH=win64
# No crash dialogue, and no requests to install Mono and Gecko.
export WINEDLLOVERRIDES='winedbg.exe=d;mscoree=d;mshtml=d'

wine_holder=

create_wine_prefix() {
  rm -rf "$WINEPREFIX"
  wine wineboot -i
  wineserver -w
  touch "$WINEPREFIX/.prepared"
}

# Tests that run at the same time may all need the prefix first, so a lock admits one at a
# time. Wine's own processes, which run on, must not inherit the lock.
prepare_wine_prefix() {
  mkdir -p "$(dirname "$WINEPREFIX")"
  (
    flock 9
    [[ -e "$WINEPREFIX/.prepared" ]] || quietly wine-prefix create_wine_prefix 9>&-
  ) 9>"$WINEPREFIX.lock"
}

# copy_wine_prefix FOLDER: makes a second prefix there. Both use the same folder of
# Windows' own files, which is large and does not change. The logs of an agent that ran in
# the first prefix stay behind.
copy_wine_prefix() {
  mkdir -p "$1/drive_c"
  cp -a "$WINEPREFIX"/*.reg "$WINEPREFIX"/dosdevices "$WINEPREFIX"/.update-timestamp "$WINEPREFIX"/.prepared "$1"
  local folder
  for folder in "$WINEPREFIX"/drive_c/*; do
    [[ "$folder" == */windows ]] || cp -a "$folder" "$1/drive_c"
  done
  rm -rf "$1/drive_c/ProgramData/Veltrin Systems"
  ln -s "$(realpath "$WINEPREFIX")/drive_c/windows" "$1/drive_c/windows"
}

# Starts the process that stop_wine_holder ends. Wine's services run when this returns.
# They must not inherit an output of the caller: they run on, and a reader of that output
# would wait for its end.
start_wine_holder() {
  local pipe="$WINEPREFIX/holder.pipe"
  rm -f "$pipe"
  mkfifo "$pipe"
  # The Wine process itself holds the writing end of the pipe open, so the command
  # interpreter waits for a line that never comes.
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
