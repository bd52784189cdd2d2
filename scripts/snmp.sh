# net-snmp's tools, away from the system's settings: no configuration files, no
# MIB files unless asked for, names as numbers. To be sourced; needs $work, a
# folder of its own.

export MIBS='' SNMPCONFPATH=/nonexistent SNMP_PERSISTENT_DIR=$work/net-snmp
mkdir -p "$SNMP_PERSISTENT_DIR/cert_indexes"

# Debian ships the base modules, SNMPv2-SMI and its kin, with Erlang's SNMP
# library only.
base_mibs=$(echo /usr/lib/erlang/lib/snmp-*/mibs)

# write_mib PROGRAM: the module that goes with this build. After it, a tool
# that is given "${through_mib[@]}" reads and prints names.
mib_name=VELTRIN-CORVANE-MIB
write_mib() {
  mkdir -p "$work/mibs"
  "$1" >"$work/mibs/$mib_name.txt"
  through_mib=(-M "$base_mibs:$work/mibs" -m "$mib_name")
}

# A UDP port of the loopback that nobody listens on, starting at a random one.
free_udp_port() {
  local port=$((20000 + RANDOM % 20000))
  while ss -Hlun "sport = :$port" | grep -q .; do
    port=$((port + 1))
  done
  echo "$port"
}

# start_trap_receiver PORT FILE: one line for each SNMPv1 trap:
# "enterprise generic specific time-stamp". Leaves its process id in trap_receiver.
start_trap_receiver() {
  printf 'disableAuthorization yes\nformat1 %s\nformat2 %s\n' \
    '%N %w %q %T\n' 'notification %V, %v\n' >"$work/snmptrapd.conf"
  : >"$2"
  setsid snmptrapd -f -Lf "$2" -n -C -c "$work/snmptrapd.conf" -On \
    -p "$work/snmptrapd.pid" "udp:127.0.0.1:$1" >"$work/snmptrapd.out" 2>&1 &
  trap_receiver=$!
}

# ask TOOL VERSION ARGUMENT...: one question to the agent at $address. On one
# line the names and values, and then the error's name if there is one.
ask() {
  local tool=$1 version=$2
  shift 2
  "$tool" -v"$version" -c public -t 5 -r 1 -Oqn "$address" "$@" >"$work/answer" 2>"$work/error" || true
  sed -nE 's/^Reason: \(?([A-Za-z]+).*/\1/p; /^Timeout/p' "$work/error" |
    cat "$work/answer" - | paste -sd'|'
}

# stop_process ID: ends it and waits for it; its exit status is the result.
stop_process() {
  kill "$1" 2>/dev/null || true
  wait "$1"
}
