# net-snmp's tools, independent of the system's settings: without configuration files,
# without MIB files by default, and with names as numbers. To be sourced; needs $work, a
# folder for its files.

export MIBS='' SNMPCONFPATH=/nonexistent SNMP_PERSISTENT_DIR=$work/net-snmp
mkdir -p "$SNMP_PERSISTENT_DIR/cert_indexes"

# Prints the folder of SNMPv2-SMI and the other base modules. In Debian, only Erlang's SNMP
# library contains them. The caller of this file may install it later.
base_mibs() {
  echo /usr/lib/erlang/lib/snmp-*/mibs
}

# write_mib PROGRAM: writes the module of this build. Afterwards a tool with the options
# "${through_mib[@]}" reads and prints names.
mib_name=VELTRIN-CORVANE-MIB
write_mib() {
  mkdir -p "$work/mibs"
  "$1" >"$work/mibs/$mib_name.txt"
  through_mib=(-M "$(base_mibs):$work/mibs" -m "$mib_name")
}

# Prints a free UDP port of the loopback. The search starts at a random port.
free_udp_port() {
  local port=$((20000 + RANDOM % 20000))
  while ss -Hlun "sport = :$port" | grep -q .; do
    port=$((port + 1))
  done
  echo "$port"
}

# start_trap_receiver PORT FILE: writes a line to FILE for each SNMPv1 trap:
# "enterprise generic specific time-stamp". Sets trap_receiver to the process id.
start_trap_receiver() {
  printf 'disableAuthorization yes\nformat1 %s\nformat2 %s\n' \
    '%N %w %q %T\n' 'notification %V, %v\n' >"$work/snmptrapd.conf"
  : >"$2"
  setsid snmptrapd -f -Lf "$2" -n -C -c "$work/snmptrapd.conf" -On \
    -p "$work/snmptrapd.pid" "udp:127.0.0.1:$1" >"$work/snmptrapd.out" 2>&1 &
  trap_receiver=$!
}

# ask TOOL VERSION ARGUMENT...: sends one request to the agent at $address. Prints names
# and values on one line, and the name of an error after them.
ask() {
  local tool=$1 version=$2
  shift 2
  "$tool" -v"$version" -c public -t 5 -r 1 -Oqn "$address" "$@" >"$work/answer" 2>"$work/error" || true
  sed -nE 's/^Reason: \(?([A-Za-z]+).*/\1/p; /^Timeout/p' "$work/error" |
    cat "$work/answer" - | paste -sd'|'
}

# stop_process ID: ends the process, waits for it and returns its exit status.
stop_process() {
  kill "$1" 2>/dev/null || true
  wait "$1"
}
