# What run-agent does after its tour: shows how to go on by hand, passes on what
# is typed to the simulated server, and prints traps, until Ctrl-C.

print_commands_to_try() {
  show "Now by hand; Ctrl-C ends it"
  cat <<TEXT
In another terminal:
  snmpwalk -M +$base_mibs:$work/mibs -m $mib_name -v2c -c public $address corvane
  snmpget -v1 -c public $address ${variable_oid[ProductName]}
  tail -f '$log_folder'/Log*.log
Here, for the simulated server (help shows all its commands):
  set StreamsErrors 3
  send Streams
  drop
Traps appear here as they arrive.
TEXT
}

# Follows a growing number of traps, and the server's own lines.
print_what_happens() {
  local shown count
  shown=$(received_traps | wc -l)
  while sleep 0.5; do
    count=$(received_traps | wc -l)
    ((count == shown)) || print_traps $((shown + 1)) | sed 's/^/trap: /'
    shown=$count
  done
}

serve_by_hand() {
  local line stopped=false
  trap 'stopped=true' INT TERM
  print_commands_to_try
  print_what_happens &
  local printer=$!
  tail -n 0 -f "$simulator_said" > >(sed -u 's/^/server: /') &
  local follower=$!
  while [[ "$stopped" == false ]]; do
    if [[ -t 0 ]] && read -r -t 1 line; then
      tell "$line"
    elif [[ ! -t 0 ]]; then
      sleep 1 || true
    fi
    kill -0 "$host" 2>/dev/null || break
  done
  stop_process "$printer" || true
  stop_process "$follower" || true
}
