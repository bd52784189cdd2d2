# Three snmptrapd. Each uses one of the three handlers of
# monitoring/snmptrapd/snmptrapd.conf and another spelling of names: with the MIB,
# without the MIB, and with numbers only. Source this file after snmp.sh and stand.sh.

log_port=$((snmp_port + 2))
zabbix_port=$((snmp_port + 3))
snmptt_port=$((snmp_port + 4))
receivers=()

# write_receiver NAME HANDLER: writes the committed file with the handler whose line
# matches. The paths of an installation are replaced by paths of the test, and syslog by
# a file. The test trap-service uses the delivered paths.
write_receiver() {
  awk -v wanted="$2" '
    /^#?traphandle/ && $0 !~ wanted {next}
    /^#\[snmp\]/ && wanted !~ /snmptt/ {next}
    {sub(/^#(traphandle|\[snmp\])/, substr($1, 2)); print}' \
    "$top/monitoring/snmptrapd/snmptrapd.conf" |
    sed -E -e "s|(corvane-trap)$|\1 $work/$1.log|; s|/var/log/snmptrap/.*|$work/$1.log|" \
      -e "s|/usr/local/bin/|$top/monitoring/snmptrapd/|" \
      -e "s|(default /usr/sbin/snmptt)|\1 --ini=$work/snmptt.ini|" >"$work/$1.conf"
}

# start_receiver NAME PORT OPTION...
start_receiver() {
  setsid snmptrapd -f -Lo -n -C -c "$work/$1.conf" -p "$work/$1.pid" "${@:3}" "udp:127.0.0.1:$2" \
    >"$work/$1.out" 2>&1 </dev/null &
  receivers+=($!)
}

start_receivers() {
  local port
  sed -E -e "s|^log_file = .*|log_file = $work/snmptt.log|; s|^(syslog_enable\|syslog_system_enable) = .*|\1 = 0|" \
    -e "/^\[TrapFiles\]/,\$d" /etc/snmp/snmptt.ini >"$work/snmptt.ini"
  printf '[TrapFiles]\nsnmptt_conf_files = <<END\n%s\nEND\n' "$top/monitoring/snmptt/corvane.snmptt.conf" >>"$work/snmptt.ini"
  write_receiver log '/corvane-trap$'
  write_receiver zabbix '/corvane-trap --zabbix'
  write_receiver snmptt '/snmptt$'
  start_receiver log "$log_port" "${through_mib[@]}"
  start_receiver zabbix "$zabbix_port"
  start_receiver snmptt "$snmptt_port"
  for port in "$log_port" "$zabbix_port" "$snmptt_port"; do
    await listens_on_udp "$port" || fail "snmptrapd does not listen on port $port"
  done
}
listens_on_udp() { ss -Hlun "sport = :$1" | grep -q .; }

stop_receivers() {
  local process
  for process in "${receivers[@]}"; do
    stop_process "$process" || true
  done
}

# mib_traps FORMAT: prints severity, name and sentence of every trap from the MIB, in
# the order in which the test raises the traps. In the format for SNMPTT, the name is
# the object identifier.
mib_traps() {
  local name
  for name in TrapSoftwareLinkDown TrapSoftwareLinkUp \
    TrapStreamsFailed TrapAudioSourcesFailed TrapAudioSilenceDetectFailed \
    TrapStreamsFailedUpdated TrapAudioSourcesFailedUpdated TrapAudioSilenceDetectFailedUpdated \
    TrapStreamsOK TrapAudioSourcesOK TrapAudioSilenceDetectPassed; do
    awk -v name="corvane$name" -v oid=".$prefix.0." -v format="$1\n" '
      $1 == name {inside = 1}
      inside && /#SUMMARY/ {sentence = $0; gsub(/^[^"]*"|"$/, "", sentence)}
      inside && /#SEVERITY/ {severity = $2}
      inside && /::=/ {
        if (format ~ /2\$/) printf "%s %s %s\n", oid $4, severity, sentence
        else printf format, severity, name, sentence
        exit
      }' "$work/mibs/$mib_name.txt"
  done
}

# "<time> 127.0.0.1 MAJOR corvaneTrapStreamsFailed Corvane: at least ..."
lines_of_log() {
  sed -nE 's/^[0-9-]{10}T[0-9:]{8}[+-][0-9]{4} 127\.0\.0\.1 //p' "$work/log.log"
}

# "<time> .1.3.6.1.4.1.E.333.0.13 MAJOR "Status Events" 127.0.0.1 - Corvane: at least ..."
lines_of_snmptt() {
  sed -nE 's/^.* (\.[0-9.]+) ([A-Z]+) "Status Events" [^ ]+ - /\1 \2 /p' "$work/snmptt.log"
}

zabbix_verdicts() {
  python3 "$here/configuration.py" zabbix-traps "$top/monitoring/zabbix/corvane-6.0.yaml" "$work/zabbix.log"
}
zabbix_says='corvaneTrapSoftwareLinkDown: Corvane: traps about the link: problem
corvaneTrapSoftwareLinkUp: Corvane: traps about the link: recovery
corvaneTrapStreamsFailed: Corvane: traps about streams: problem
corvaneTrapAudioSourcesFailed: Corvane: traps about audio sources: problem
corvaneTrapAudioSilenceDetectFailed: Corvane: traps about silence: problem
corvaneTrapStreamsFailedUpdated: Corvane: traps about streams: problem
corvaneTrapAudioSourcesFailedUpdated: Corvane: traps about audio sources: problem
corvaneTrapAudioSilenceDetectFailedUpdated: Corvane: traps about silence: problem
corvaneTrapStreamsOK: Corvane: traps about streams: recovery
corvaneTrapAudioSourcesOK: Corvane: traps about audio sources: recovery
corvaneTrapAudioSilenceDetectPassed: Corvane: traps about silence: recovery'
