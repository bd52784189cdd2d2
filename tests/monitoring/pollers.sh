# The pollers: snmp_exporter with the committed module, check_snmp with the committed
# commands, and collectd with the committed file. Also starts an SNMP service without the agent. Source this file
# after snmp.sh and stand.sh.

bare_address=127.0.0.1:$((snmp_port + 5))
exporter_address=127.0.0.1:$((snmp_port + 6))
pollers=()

start_pollers() {
  printf 'rocommunity public 127.0.0.1\n' >"$work/snmpd.conf"
  setsid snmpd -f -Lo -C -c "$work/snmpd.conf" -p "$work/snmpd.pid" "udp:$bare_address" >"$work/snmpd.out" 2>&1 </dev/null &
  bare_service=$!
  pollers+=("$bare_service")
  setsid prometheus-snmp-exporter --config.file="$top/monitoring/prometheus/snmp-corvane-0.22.yml" \
    --web.listen-address="$exporter_address" >"$work/exporter.out" 2>&1 </dev/null &
  pollers+=($!)
  await curl -sf "http://$exporter_address/" || fail "the exporter did not start: $(tail -n 2 "$work/exporter.out")"
  await snmpget -v2c -c public -t 1 -r 0 "$bare_address" 1.3.6.1.2.1.1.3.0 || fail "snmpd did not start: $(tail -n 2 "$work/snmpd.out")"
}

# Starts collectd with two servers, which it reads each second or two: "corvane1" is the agent,
# and "bare" is the service without the agent.
start_collectd() {
  local committed=$top/monitoring/collectd/corvane.conf
  sed '/<\/Plugin>/d' "$committed" >"$work/corvane.collectd.conf"
  {
    sed -n '/<Host/,/<\/Host>/p' "$committed" | sed "s/corvane1/bare/; s/192.0.2.10/$bare_address/"
    echo '</Plugin>'
  } >>"$work/corvane.collectd.conf"
  sed -i "s/192.0.2.10/$address/; s/\bInterval .*/Interval 1/; s/MaxReadInterval .*/MaxReadInterval 2/" "$work/corvane.collectd.conf"
  cat >"$work/collectd.conf" <<CONF
FQDNLookup false
Hostname "manager"
BaseDir "$work"
TypesDB "/usr/share/collectd/types.db"
LoadPlugin logfile
LoadPlugin csv
<Plugin logfile>
  File "$work/collectd.log"
</Plugin>
<Plugin csv>
  DataDir "$work/collected"
</Plugin>
Include "$work/corvane.collectd.conf"
CONF
  setsid "$(PATH=$PATH:/usr/sbin command -v collectd)" -f -C "$work/collectd.conf" >"$work/collectd.out" 2>&1 </dev/null &
  pollers+=($!)
}

# collected HOST: prints the names and the last values that collectd has written.
collected() {
  local file name
  for file in "$work/collected/$1"/snmp/gauge-*; do
    name=${file##*/gauge-}
    echo "${name%-????-??-??} $(sed -nE '${s/.*,//; s/\.0+$//; p}' "$file")"
  done
}
# said_by_collectd TEXT: prints 1 if the log contains it.
said_by_collectd() { grep -cFm1 -- "$1" "$work/collectd.log"; }

stop_pollers() {
  local process
  for process in "${pollers[@]}"; do
    stop_process "$process" || true
  done
}

# scrape ADDRESS: prints the HTTP status and the series of the agent, sorted.
scrape() {
  curl -s -w 'status %{http_code}\n' -o "$work/scraped" \
    "http://$exporter_address/snmp?target=$1&module=corvane&auth=corvane_v2"
  grep '^corvane_' "$work/scraped" | sort
}
packets_of_last_scrape() { sed -n 's/^snmp_scrape_packets_sent //p' "$work/scraped"; }

# check NAME [PORT [COMMUNITY]]: prints the exit status and the text of this check.
check() {
  local status=0 text command
  command=$(python3 "$here/configuration.py" nagios "$top/monitoring/nagios/corvane.cfg" \
    127.0.0.1 "${2-$snmp_port}" | sed -n "s/ -C public / -C ${3-public} /; s/^$1\t//p")
  text=$(eval "$command" 2>&1) || status=$?
  echo "$status ${text%"${text##*[! ]}"}"
}

# Prints the name and the exit status of every check.
check_all() {
  local name
  for name in audio-sources host link product silence streams; do
    echo "$name $(check "$name" | sed 's/ .*//;q')"
  done
}
