# The agent starts without a Corvane server.

start_trap_receiver_here
host_options=(--user fred:secretsecret)
address6=
if grep -q ' lo$' /proc/net/if_inet6; then
  address6="udp6:[::1]:$snmp_port"
  host_options+=(--listen "$address6")
else
  say 'this machine has no IPv6: it is not tested'
fi
start_host "${host_options[@]}"
expect_eventually 'the first failed attempt raises TrapSoftwareLinkDown' TrapSoftwareLinkDown trap_names
expect 'without a server the variables have their initial values' "$(variable_values)" \
  '1|"Corvane"|"1.x.x"|0|0|0|0|0'
expect_eventually 'the missing link is logged' 1 log_count 'Warning: Lost connection to Corvane process!'

# The agent tries again every five seconds. Further failed attempts change nothing.
sleep 6
expect 'further failed attempts raise no trap' "$(trap_names)" TrapSoftwareLinkDown
expect 'further failed attempts log no line' "$(log_count 'Warning: Lost connection to Corvane process!')" 1

start_simulator
tell answer off
expect_eventually 'the agent connects by itself' 0 read_variable LinkStatus
expect_eventually 'the connection is logged' 1 log_count 'Info: Connection to Corvane process established..'

expect 'the log begins with the start, the variables and the traps' \
  "$(log_lines | grep -E 'Starting|TABLE')" "Info: Starting Corvane SNMP extension agent..
Info: MIB TABLE 'AudioSourcesSilence':INT = $prefix.2.4
Info: MIB TABLE 'AudioSourcesErrors':INT = $prefix.2.3
Info: MIB TABLE 'AudioSourcesCount':INT = $prefix.2.2
Info: MIB TABLE 'StreamsErrors':INT = $prefix.2.1
Info: MIB TABLE 'StreamsCount':INT = $prefix.2.0
Info: MIB TABLE 'ProductVersion':STRING = $prefix.1.1
Info: MIB TABLE 'ProductName':STRING = $prefix.1.0
Info: MIB TABLE 'LinkStatus':INT = $prefix.0.0
Info: TRAP TABLE 'TrapSoftwareLinkUp' = $prefix.10
Info: TRAP TABLE 'TrapSoftwareLinkDown' = $prefix.11
Info: TRAP TABLE 'TrapStreamsOK' = $prefix.12
Info: TRAP TABLE 'TrapStreamsFailed' = $prefix.13
Info: TRAP TABLE 'TrapAudioSourcesOK' = $prefix.14
Info: TRAP TABLE 'TrapAudioSourcesFailed' = $prefix.15
Info: TRAP TABLE 'TrapAudioSilenceDetectPassed' = $prefix.16
Info: TRAP TABLE 'TrapAudioSilenceDetectFailed' = $prefix.17
Info: TRAP TABLE 'TrapStreamsFailedUpdated' = $prefix.18
Info: TRAP TABLE 'TrapAudioSourcesFailedUpdated' = $prefix.19
Info: TRAP TABLE 'TrapAudioSilenceDetectFailedUpdated' = $prefix.20"
expect 'each line begins with a time' \
  "$(cat "$log_folder"/Log*.log | grep -cvE '^[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}: (Info|Warning|Error): ')" 0
expect 'the name of the file is the day' \
  "$(find "$log_folder" -type f -printf '%f\n' | sed -E 's/^Log[0-9-]+\.log$/good/' | sort -u)" good
