# The tour through the stand: requests to the agent, and the answers that must come. It
# compares each answer as a whole. To be sourced after stand.sh and cases.sh.

# show TITLE: prints a heading.
show() {
  printf '\n--- %s\n' "$*"
}

# The agent asks for values 15 seconds after it has connected, and the last
# message of the answer makes it raise TrapSoftwareLinkUp.
await_first_update() {
  local waited=0
  say "Waiting for the first update: the agent asks for it 15 s after connecting"
  until [[ "$(trap_names)" == TrapSoftwareLinkUp* ]]; do
    if ((waited == 60)); then
      expect 'the first update comes' 'nothing in 60 s' TrapSoftwareLinkUp
      return 1
    fi
    sleep 1
    waited=$((waited + 1))
    show_waiting "$waited"
  done
  [[ ! -t 1 ]] || echo
  say "First update received after $waited s"
}

# On a terminal it prints one line that counts, elsewhere a line every five seconds.
show_waiting() {
  if [[ -t 1 ]]; then
    printf '\r         waiting %2d s ' "$1"
  elif (($1 % 5 == 0)); then
    echo "         waiting $1 s"
  fi
}

check_walk() {
  local expected=$1 walked
  walked=$(print_walk)
  echo "$walked"
  expect 'the walk' "$walked" "$expected"
}

# walk_text LINK NAME VERSION STREAMS ERRORS SOURCES ERRORS SILENCE
walk_text() {
  printf "$mib_name::corvane%s\n" "LinkStatus = INTEGER: $1" "ProductName = STRING: $2" \
    "ProductVersion = STRING: $3" "StreamsCount = INTEGER: $4" "StreamsErrors = INTEGER: $5" \
    "AudioSourcesCount = INTEGER: $6" "AudioSourcesErrors = INTEGER: $7" "AudioSourcesSilence = INTEGER: $8"
}

# change VARIABLE VALUE GROUP TRAP: sets a value at the server, which sends the group.
# The variable must get the value, and the trap must arrive.
change() {
  local variable=$1 value=$2 group=$3 wanted=$4 before
  before=$(received_traps | wc -l)
  tell set "$variable" "$value"
  tell send "$group"
  echo "$variable := $value"
  expect_eventually "$variable follows" "$value" read_variable "$variable"
  expect_next_trap "$before" "$wanted"
}

# expect_next_trap BEFORE NAME: exactly one trap arrives after the first BEFORE traps.
expect_next_trap() {
  local printed
  expect_eventually "trap $2" "$2" trap_names "$1"
  printed=$(print_traps "$(($1 + 1))")
  expect "trap $2 has a name in the MIB" "${printed%%,*}" "$mib_name::corvane$2"
  echo "  trap: ${printed//$'\n'/$'\n  trap: '}"
}

tour() {
  await_first_update || return 0
  # The list starts with 15000 ms, because the first trap cannot be earlier.
  expect 'the time stamp is in milliseconds' \
    "$(time_stamps_are_plausible "15000 $(received_traps | awk '{print $4}')")" yes

  show "The variables, as a walk finds them"
  check_walk "$(walk_text 'up(0)' Corvane 1.0.0 12 0 6 0 0)"

  show "Values change at the server; traps arrive"
  tell set ProductName Corvane Main
  tell set ProductVersion 2.1
  tell set StreamsCount 24
  tell set AudioSourcesCount 8
  tell send Product
  change StreamsErrors 3 Streams TrapStreamsFailed
  change StreamsErrors 5 Streams TrapStreamsFailedUpdated
  change StreamsErrors 0 Streams TrapStreamsOK
  change AudioSourcesErrors 2 AudioSources TrapAudioSourcesFailed
  change AudioSourcesErrors 4 AudioSources TrapAudioSourcesFailedUpdated
  change AudioSourcesErrors 0 AudioSources TrapAudioSourcesOK
  change AudioSourcesSilence 1 AudioSources TrapAudioSilenceDetectFailed
  change AudioSourcesSilence 2 AudioSources TrapAudioSilenceDetectFailedUpdated
  change AudioSourcesSilence 0 AudioSources TrapAudioSilenceDetectPassed
  expect 'each of these traps is reported to the server' \
    "$(reported_traps | wc -l)" 9

  show "A manager tries to set a variable"
  local answer
  answer=$(snmpset -v2c -c public -t 5 -r 2 "$address" "${variable_oid[StreamsErrors]}" i 7 2>&1 |
    sed -n 's/^Reason: //p') || true
  echo "$answer"
  expect 'a Set is refused' "$answer" 'notWritable (That object does not support modification)'

  show "The server sends messages to which the agent does not subscribe"
  # The agent could not decode the first two, and would log an error if it tried.
  tell message GlobalOptions '{"adminpass": 5}'
  tell message SNMPsequence '{}'
  tell message ProcessList '{"processes": {"encoder": {}, "monitor": {}}}'

  show "The server drops the connection; the agent connects again"
  local before
  before=$(received_traps | wc -l)
  tell drop
  expect_next_trap "$before" TrapSoftwareLinkDown
  expect_next_trap $((before + 1)) TrapSoftwareLinkUp

  # The agent has read all that the server sent before the drop.
  expect 'a message without a subscriber is skipped without decoding' \
    "$(cat "$log_folder"/Log*.log | grep -c 'Error: ')" 0

  show "The variables now"
  check_walk "$(walk_text 'up(0)' 'Corvane Main' 2.1 24 0 8 0 0)"

  show "The end of the agent's log in $log_folder, without the requests"
  cat "$log_folder"/Log*.log | grep -vE ': (GetRequest|GetNextRequest|GetStoredVar)' | tail -n 12
  check_log
}

check_log() {
  expect 'the log begins with the start' "$(log_lines | head -n 1)" \
    'Info: Starting Corvane SNMP extension agent..'
  expect 'the log holds the start, the updates and the loss of the link' \
    "$(log_lines | grep -cxE 'Info: (Extension agent started!|SNMP variables successfully updated|Connection to Corvane process established..)|Warning: Lost connection to Corvane process!')" 6
}
