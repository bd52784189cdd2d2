# The link is lost and comes back; the host ends while the link is up.

before=$(received_traps | wc -l)
tell refuse 8000
tell drop
expect_eventually 'a lost link raises its trap' TrapSoftwareLinkDown trap_names "$before"
expect_eventually 'LinkStatus tells' 1 read_variable LinkStatus
expect 'the other values stay' "$(read_variable StreamsCount)" 10
expect_eventually 'a link that comes back asks for an update' 'TrapSoftwareLinkDown TrapSoftwareLinkUp' \
  trap_names "$before"
expect_eventually 'LinkStatus tells that too' 0 read_variable LinkStatus

second=$("$top/run-agent" --once --native 2>&1)
expect 'a second run beside this one ends at once' $? 1
expect 'and says why' "$(tail -n 1 <<<"$second")" \
  "run-agent: TCP port $link_port is in use: a Corvane server or another run is there"

before=$(received_traps | wc -l)
stop_host
expect 'SIGTERM ends the host with status 0' $? 0
expect_eventually 'the server sees the link closed in order' 'disconnected: closed by the agent' \
  tail -n 1 "$simulator_said"
expect 'ending is no loss of the link' "$(trap_names "$before")" ''
expect 'the log ends with the end' "$(log_lines | tail -n 1)" 'Info: Terminating SNMP extension agent..'
