# The requests that both programs must answer alike, and what differs. To be sourced.
#
#   print_answers                 sends each request and prints a line "request: answer"
#   answer_there REQUEST ANSWER   prints what net-snmp's agent must answer to a request, from
#                                 the answer of snmphost

# The options of a manager for each SNMP version. SNMPv3 differs: snmphost's user has AES.
# The AES of this net-snmp, which is built without OpenSSL, does not work.
declare -A manager=([1]='-v1 -c public' [2c]='-v2c -c public')
use_privacy() { manager[3]="-v3 -u fred -l authPriv -a SHA -A secretsecret -x $1 -X secretsecret"; }

# request TOOL VERSION ARGUMENT...: prints the request and its answer. P is the prefix. A
# failed object is the name that the error index of the answer points to. An agent that has
# not answered once is not asked again.
request() {
  local tool=$1 version=$2 options answer='not asked'
  shift 2
  if [[ "$silent" == false ]]; then
    read -ra options <<<"${manager[$version]}"
    answer=$("$tool" "${options[@]}" -t 20 -r 2 -On "$address" "${@//P/$prefix}" 2>&1 |
      sed "/^Error in packet/d; /^$/d; s/\.$prefix/P/g; s/^Reason: (*\([A-Za-z]*\).*/\1/" | paste -sd'|')
    [[ "$answer" != *Timeout* ]] || silent=true
  fi
  echo "$version $tool $*: $answer"
}

print_answers() {
  local version name silent=false variable_names=()
  for name in "${variables[@]}"; do variable_names+=("${variable_oid[$name]/"$prefix"/P}"); done
  for version in 1 2c 3; do
    for name in "${variable_names[@]}" P P.0 P.0.0.0 P.1.1.7.8 P.1.2.3 P.2.5 P.3; do
      request snmpget "$version" "$name"
    done
    request snmpget "$version" "${variable_names[@]}"
    request snmpget "$version" -Cf P.3 P.0.0
    request snmpget "$version" -Cf P.0.0 P.3
    for name in 1.3.6.1.4.1 P P.0 P.1.0.5 "${variable_names[@]}" P.2.4.1 P.2.5 P.3; do
      request snmpgetnext "$version" "$name"
    done
    request snmpgetnext "$version" P P.0.0
    request snmpgetnext "$version" P.1.0 P.0.0
    request snmpgetnext "$version" -Cf P.2.4 P.0.0
    request snmpwalk "$version" P
    for name in "${variable_names[@]}" P.0.0.0 P.3; do
      request snmpset "$version" "$name" i 5
      request snmpset "$version" "$name" s five
    done
    request snmpset "$version" P.2.0 i 5 P.2.1 i 5
    if [[ "$version" != 1 ]]; then
      request snmpbulkget "$version" -Cn0 -Cr3 P
      request snmpbulkget "$version" -Cn1 -Cr2 P.0 P.1 P.2
      request snmpbulkget "$version" -Cn0 -Cr12 P
      request snmpbulkwalk "$version" P
    fi
  done
}

# The reasons of the differences are in winExtDLL:
# - It calls the DLL for a Set in the last phase of net-snmp's Set, and net-snmp then sets no
#   error index.
# - If a name is unknown, it sets the error of the first name in the request.
# - It translates noSuchName to noSuchInstance, also at the end of the variables, where
#   net-snmp needs endOfMibView or no answer. So GetBulk repeats the last name.
answer_there() {
  local end='P.2.4 = No Such Instance currently exists at this OID' answer=$2
  local of_snmphost='No more variables left in this MIB View (It is past the end of the MIB tree)'
  case "$1" in
    *' snmpset '*) answer=${answer%|Failed object*} ;;
    '2c snmpget -Cf P.0.0 P.3' | '3 snmpget -Cf P.0.0 P.3') answer="${end/2.4/0.0}|${end/2.4/3}" ;;
    *' snmpbulkget '*-Cr12*) answer="${answer%|*}|$end|$end|$end|$end" ;;
    *' snmpbulkwalk '*) answer="${answer%|*}|$end|$end" ;;
    *) answer=${answer/"$of_snmphost"/${end#* = }} ;;
  esac
  echo "$answer"
}
