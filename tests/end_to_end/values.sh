# The server sends values: first all in one update, then single groups.

tell set ProductName Station
tell set ProductVersion 3.14
tell set StreamsCount 1024
tell set StreamsErrors 7
tell set StreamMonitorsErrors 9
tell set AudioSourcesCount 30
tell set AudioSourcesErrors 2
tell set AudioSourcesSilence 1
tell answer on

traps_before='TrapSoftwareLinkDown'
first_update='TrapStreamsFailed TrapAudioSourcesFailed TrapAudioSilenceDetectFailed TrapSoftwareLinkUp'
expect_eventually 'the agent requests an update by itself; the update raises its traps in order' \
  "$traps_before $first_update" trap_names
expect 'the variables have the values of the update' "$(variable_values)" \
  '0|"Station"|"3.14"|1024|7|30|2|1'
expect 'all traps are enterprise-specific and have the prefix' \
  "$(received_traps | cut -d' ' -f1,2 | sort -u)" ".$prefix 6"

stamps=$(received_traps | awk '{print $4}')
expect 'the time stamps are milliseconds since the start, and rise' \
  "$(time_stamps_are_plausible "$stamps")" yes

# After a complete update the agent sends no further request.
asked=$(grep -c '^received SNMPupdate ' "$simulator_said")
expect 'the agent sent one request' "$asked" 1

expect_eventually 'the agent reports each of these traps to the server' \
  'received SNMPtrap {"traptype":{"streamsfailed":{}}}
received SNMPtrap {"traptype":{"audiosourcesfailed":{}}}
received SNMPtrap {"traptype":{"audiosilencedetectfailed":{}}}' reported_traps

expect_change() {
  local before
  before=$(received_traps | wc -l)
  tell set "$1" "$2"
  tell send "$3"
  expect_eventually "$1 becomes $2" "$2" read_variable "$1"
  expect_eventually "$1 becomes $2: $4" "$4" trap_names "$before"
}
expect_change StreamsErrors 1024 Streams TrapStreamsFailedUpdated
expect_change StreamsErrors 0 Streams TrapStreamsOK
expect_change AudioSourcesErrors 3 AudioSources TrapAudioSourcesFailedUpdated
expect_change AudioSourcesSilence 4 AudioSources TrapAudioSilenceDetectFailedUpdated
expect_change AudioSourcesErrors 0 AudioSources TrapAudioSourcesOK
expect_change AudioSourcesSilence 0 AudioSources TrapAudioSilenceDetectPassed

before=$(received_traps | wc -l)
tell set AudioSourcesErrors 5
tell set AudioSourcesSilence 6
tell send AudioSources
expect_eventually 'if errors and silence change together, the trap of the errors comes first' \
  'TrapAudioSourcesFailed TrapAudioSilenceDetectFailed' trap_names "$before"
tell send AudioSources
tell send StreamMonitors
tell set ProductName "$(printf 'n%.0s' {1..128})"
tell send Product
expect_eventually 'a name of 128 bytes is returned whole' "\"$(printf 'n%.0s' {1..128})\"" \
  read_variable ProductName
expect 'unchanged values and stream monitors raise no trap' "$(trap_names "$before")" \
  'TrapAudioSourcesFailed TrapAudioSilenceDetectFailed'

before=$(received_traps | wc -l)
tell send Finished
expect_eventually 'a second end of an update raises TrapSoftwareLinkUp again' TrapSoftwareLinkUp \
  trap_names "$before"
expect 'every trap was received' \
  "$(trap_names | tr ' ' '\n' | sort -u | paste -sd' ')" \
  "$(printf '%s\n' "${trap_name[@]}" | sort | paste -sd' ')"
expect 'the log holds the updates and the traps' "$(log_lines | grep -cxF \
  -e "Info: Update streams: count=1024, errors=7" \
  -e "Info: Update product information: name='Station', version='3.14'" \
  -e "Info: Update audio sources: count=30, errors=2, silence=1" \
  -e "Info: SNMPExtensionAgent: Added trap 'TrapStreamsFailed' to transmit queue.." \
  -e "Info: SNMPExtensionAgent::Trap 'TrapStreamsFailed' transmitted!")" 5
