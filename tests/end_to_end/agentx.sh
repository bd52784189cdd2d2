# The host as a subagent of net-snmp's snmpd. Traps that the agent raises while snmpd is
# away wait for its return.

socket=$work/agentx
cat >"$work/snmpd.conf" <<CONF
master agentx
agentXSocket $socket
rocommunity public 127.0.0.1
trapsink 127.0.0.1:$trap_port public
CONF

start_master() {
  snmpd -f -Lf "$work/snmpd.log" -C -c "$work/snmpd.conf" -I -smux "udp:$address" >/dev/null 2>&1 &
  master=$!
}

stop_master() {
  stop_process "$master" || true
  master=
}

start_master
await test -S "$socket" || fail "snmpd did not start: $(tail -n 3 "$work/snmpd.log")"
setsid "$host_program" --agentx "$socket" "$module" >"$host_said" 2>&1 </dev/null &
host=$!
await host_is_up || true
stays "$host" snmphost "$host_said"
expect_eventually 'AgentX: snmpd answers with the variables of the agent' 0 read_variable LinkStatus

before=$(received_traps | wc -l)
stop_master
expect_eventually 'AgentX: the host notices that snmpd is gone' 1 grep -c '^AgentX master disconnected us' "$host_said"
tell set StreamsErrors 3
tell send Streams
expect_eventually 'AgentX: the host takes the trap' 1 grep -c '^snmphost: the AgentX master is away' "$host_said"
tell set StreamsErrors 0
tell send Streams
expect_eventually 'AgentX: and the next one' 'Info: SNMPExtensionAgent::Trap '\''TrapStreamsOK'\'' transmitted!' \
  eval 'log_lines | tail -n 1'
start_master
expect_eventually 'AgentX: snmpd returns and sends both in order' 'TrapStreamsFailed TrapStreamsOK' trap_names "$before"
stop_host
expect 'AgentX: SIGTERM ends the host with status 0' $? 0
stop_master
