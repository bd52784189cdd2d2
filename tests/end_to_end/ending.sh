# The link is lost and comes back. Then the host ends while the link is up.

before=$(received_traps | wc -l)
tell refuse 8000
tell drop
expect_eventually 'a lost link raises its trap' TrapSoftwareLinkDown trap_names "$before"
expect_eventually 'LinkStatus becomes 1' 1 read_variable LinkStatus
expect 'the other values do not change' "$(read_variable StreamsCount)" 10
expect_eventually 'the agent connects again and requests an update' 'TrapSoftwareLinkDown TrapSoftwareLinkUp' \
  trap_names "$before"
expect_eventually 'LinkStatus becomes 0' 0 read_variable LinkStatus

second=$("$top/run-agent" --once --native 2>&1)
expect 'a second run at the same time ends at once' $? 1
expect 'the second run prints the reason' "$(tail -n 1 <<<"$second")" \
  "run-agent: TCP port $link_port is in use: a Corvane server or another run is there"

before=$(received_traps | wc -l)
stop_host
expect 'SIGTERM ends the host with status 0' $? 0
expect_eventually 'the agent closes the link in order' 'disconnected: closed by the agent' \
  tail -n 1 "$simulator_said"
expect 'the end of the host raises no trap' "$(trap_names "$before")" ''
expect 'the last line of the log reports the end' "$(log_lines | tail -n 1)" 'Info: Terminating SNMP extension agent..'
