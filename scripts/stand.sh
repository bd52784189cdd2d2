# The stand: corvane-sim as the Corvane server, snmphost with the agent's module, and
# snmptrapd as the receiver of traps. The stand ends each process by its id. Each
# process has a session of its own, so that Ctrl-C reaches only the script. To be sourced
# after console.sh.
#
# Needs: top (the repository), kind (native or wine), work (a folder for its files),
# snmp_port and trap_port.

source "$top/scripts/wine.sh"
source "$top/scripts/snmp.sh"

release=$top/build/release
link_port=16969  # the agent's fixed port
address=127.0.0.1:$snmp_port
simulator='' host='' trap_receiver=''
simulator_said=$work/simulator.out
traps=$work/traps
host_said=$work/host.out

if [[ "$kind" == wine ]]; then
  host_program=$release/snmphost-wine.exe
  module=$top/build/windows/SNMPd.dll
  data_folder=$WINEPREFIX/drive_c/ProgramData
else
  host_program=$release/snmphost
  module=$release/SNMPd.so
  data_folder=$work/data
  export CORVANE_DATA=$data_folder
fi
log_folder="$data_folder/Veltrin Systems/Corvane/SNMP/Logs"

# Ends the command if another program uses a port of the stand.
check_ports() {
  if ss -Hltn "sport = :$link_port" | grep -q .; then
    fail "TCP port $link_port is in use: a Corvane server or another run is there"
  fi
  local port
  for port in "$snmp_port" "$trap_port"; do
    if ss -Hlun "sport = :$port" | grep -q .; then
      fail "UDP port $port is in use: is another run there?"
    fi
  done
}

# stays ID NAME OUTPUT: ends the command if the process has ended already.
stays() {
  kill -0 "$1" 2>/dev/null || fail "$2 did not start: $(tail -n 3 "$3")"
}

# await COMMAND...: repeats the command until it succeeds. Fails after a minute.
await() {
  local deadline=$((SECONDS + 60))
  until "$@" >/dev/null 2>&1; do
    ((SECONDS < deadline)) || return 1
    sleep 0.1
  done
}

start_simulator() {
  local input=$work/simulator.in
  [[ -p "$input" ]] || mkfifo "$input"
  exec {simulator_input}<>"$input"
  setsid "$release/corvane-sim" <"$input" >"$simulator_said" 2>&1 &
  simulator=$!
  await grep -q '^listening' "$simulator_said" || true
  stays "$simulator" corvane-sim "$simulator_said"
}

# tell COMMAND...: sends one command to the simulator.
tell() {
  echo "$*" >&"$simulator_input"
}

start_trap_receiver_here() {
  start_trap_receiver "$trap_port" "$traps"
  await trap_receiver_listens || true
  stays "$trap_receiver" snmptrapd "$work/snmptrapd.out"
}
trap_receiver_listens() { ss -Hlun "sport = :$trap_port" | grep -q .; }

# start_host [OPTION...]: starts snmphost.
start_host() {
  start_loader "$host_program" --listen "udp:$address" --trap-sink "127.0.0.1:$trap_port" "$@" "$module"
}

# start_loader COMMAND...: removes the log of an earlier run, starts the program that loads
# the module, and waits until it has printed a line with $serving.
start_loader() {
  rm -rf "$log_folder"
  mkdir -p "$data_folder"
  setsid "$@" >"$host_said" 2>&1 </dev/null &
  host=$!
  host_started_ms=$(now_ms)
  await host_is_up || true
  stays "$host" "$(basename "$1")" "$host_said"
}
serving='^Serving'
host_is_up() { grep -q "$serving" "$host_said" || ! kill -0 "$host"; }

now_ms() { date +%s%3N; }

# Ends the host and returns its exit status.
stop_host() {
  local status=0 ended=$host
  host=
  stop_process "$ended" || status=$?
  return "$status"
}

stop_stand() {
  local process
  for process in "$host" "$simulator" "$trap_receiver"; do
    [[ -z "$process" ]] || stop_process "$process" || true
  done
  host='' simulator='' trap_receiver=''
}

# Values from the build: the prefix, and the names of variables and traps from the
# agent's own tables.
declare -A variable_oid variable_name trap_name
variables=()
load_names() {
  local kind number name
  # shellcheck source=/dev/null
  source "$release/generated/build-settings.sh"
  prefix=$CORVANE_PREFIX
  while read -r kind number name; do
    if [[ "$kind" == variable ]]; then
      variables+=("$name")
      variable_oid[$name]=$number
      variable_name[.$number]=$name
    else
      trap_name[$number]=$name
    fi
  done < <("$release/mib-names")
  write_mib "$release/mib-module"
}

# read_variable NAME: prints its value.
read_variable() {
  snmpget -v2c -c public -t 5 -r 2 -Oqv "$address" "${variable_oid[$1]}"
}

# Prints the values of all variables on one line.
variable_values() {
  local name values=()
  for name in "${variables[@]}"; do
    values+=("$(read_variable "$name")")
  done
  (IFS='|' && echo "${values[*]}")
}

# Prints the walk of a manager that has the MIB.
print_walk() {
  snmpwalk "${through_mib[@]}" -v1 -c public -t 5 -r 2 "$address" "$mib_name::corvane" |
    grep -v '^End of MIB'
}

# Prints a line for each trap: "enterprise generic .specific time-stamp".
received_traps() {
  grep "^\.$prefix " "$traps" || true
}

# trap_names [SKIP]: prints the names of the traps on one line, without the first SKIP.
trap_names() {
  local enterprise generic specific stamp names=()
  while read -r enterprise generic specific stamp; do
    names+=("${trap_name[${specific#.}]:-unknown$specific}")
  done < <(received_traps)
  echo "${names[*]:${1-0}}"
}

# Prints the reports of traps that the simulated server received.
reported_traps() {
  grep '^received SNMPtrap ' "$simulator_said" || true
}

# time_stamps_are_plausible STAMPS: prints yes if they ascend and none is in the future.
time_stamps_are_plausible() {
  local stamp last=0 highest=$(($(now_ms) - host_started_ms))
  for stamp in $1; do
    if ((stamp < last || stamp > highest)); then
      echo "no: $stamp is not from $last to $highest"
      return
    fi
    last=$stamp
  done
  echo yes
}

# print_traps FROM: prints the traps from this line on, with the names of the MIB. The
# name of an SNMPv1 trap is its enterprise, 0 and its specific number.
print_traps() {
  local enterprise generic specific stamp
  received_traps | tail -n "+$1" | while read -r enterprise generic specific stamp; do
    printf '%s, enterprise %s, specific %s, time stamp %s ms\n' \
      "$(name_of "$enterprise.0$specific")" "$(name_of "$enterprise")" "${specific#.}" "$stamp"
  done
}
name_of() { snmptranslate "${through_mib[@]}" "$1"; }

# log_count LINE: prints how many times the log contains this line.
log_count() {
  log_lines | grep -cxF -- "$1" || true
}

# Prints the agent's log without time stamps and carriage returns.
log_lines() {
  cat "$log_folder"/Log*.log | tr -d '\r' | sed -E 's/^[0-9:.]{12}: //'
}
