# What run-agent does after its tour, until Ctrl-C: it prints commands to try, passes
# typed lines to the simulated server, and prints traps. To be sourced after stand.sh.

print_commands_to_try() {
  show "Now by hand; Ctrl-C ends it"
  cat <<TEXT
In another terminal:
  snmpwalk -M +$(base_mibs):$work/mibs -m $mib_name -v2c -c public $address corvane
  snmpget -v1 -c public $address ${variable_oid[ProductName]}
  tail -f '$log_folder'/Log*.log
Here, for the simulated server (help shows all its commands):
  set StreamsErrors 3
  send Streams
  drop
Traps appear here as they arrive.
TEXT
}

# Prints each trap that arrives, until it is ended.
print_new_traps() {
  local shown count
  shown=$(received_traps | wc -l)
  while sleep 0.5; do
    count=$(received_traps | wc -l)
    ((count == shown)) || print_traps $((shown + 1)) | sed 's/^/trap: /'
    shown=$count
  done
}

# read_typed_line SECONDS: succeeds if a line of standard input is complete within that
# time, and leaves it in typed_line. "read" can time out in the middle of a line and has
# then consumed its first characters: these stay in typed_part for the next call.
typed_line='' typed_part=''
read_typed_line() {
  local part='' complete=true
  IFS= read -r -t "$1" part || complete=false
  typed_part+=$part
  [[ "$complete" == true ]] || return 1
  typed_line=$typed_part
  typed_part=''
}

serve_by_hand() {
  local stopped=false
  trap 'stopped=true' INT TERM
  print_commands_to_try
  print_new_traps &
  local printer=$!
  tail -n 0 -f "$simulator_said" > >(sed -u 's/^/server: /') &
  local follower=$!
  while [[ "$stopped" == false ]]; do
    if [[ ! -t 0 ]]; then
      sleep 1 || true
    elif read_typed_line 1; then
      tell "$typed_line"
    fi
    kill -0 "$host" 2>/dev/null || break
  done
  stop_process "$printer" || true
  stop_process "$follower" || true
}
