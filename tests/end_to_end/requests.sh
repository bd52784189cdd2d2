# Requests of every kind, in SNMPv1 and SNMPv2c, while no value changes.

link=".$prefix.0.0 0"
name=".$prefix.1.0 \"Corvane\""
version=".$prefix.1.1 \"1.x.x\""
rest=".$prefix.2.0 0|.$prefix.2.1 0|.$prefix.2.2 0|.$prefix.2.3 0|.$prefix.2.4 0"
past_the_end='No more variables left in this MIB View (It is past the end of the MIB tree)'
unknown='No Such Instance currently exists at this OID'

expect 'v1: a walk' "$(ask snmpwalk 1 "$prefix")" "$link|$name|$version|$rest|End of MIB"
expect 'v2c: a walk' "$(ask snmpwalk 2c "$prefix")" "$link|$name|$version|$rest|.$prefix.2.4 $past_the_end"
for v in 1 2c; do
  expect "v$v: a Get of all variables in one request" \
    "$(ask snmpget "$v" "${variable_oid[@]}" | tr '|' '\n' | sort -V | paste -sd'|')" \
    "$link|$name|$version|$rest"
  expect "v$v: a name below a variable reads the variable" \
    "$(ask snmpget "$v" "$prefix.0.0.0" "$prefix.1.1.7.8")" \
    ".$prefix.0.0.0 0|.$prefix.1.1.7.8 \"1.x.x\""
  expect "v$v: GetNext from before the prefix" "$(ask snmpgetnext "$v" 1.3.6.1.4.1)" "$link"
  expect "v$v: GetNext of the prefix" "$(ask snmpgetnext "$v" "$prefix")" "$link"
  expect "v$v: GetNext of a variable" "$(ask snmpgetnext "$v" "$prefix.1.0")" "$version"
  expect "v$v: GetNext from below a variable" "$(ask snmpgetnext "$v" "$prefix.1.0.5")" "$version"
  expect "v$v: GetNext of several names in one request" "$(ask snmpgetnext "$v" "$prefix" "$prefix.0.0")" \
    "$link|$name"
done

expect 'v1: Get of an unknown name' "$(ask snmpget 1 "$prefix.3")" noSuchName
expect 'v2c: Get of an unknown name' "$(ask snmpget 2c "$prefix.3")" ".$prefix.3 $unknown"
expect 'v1: Get of an unknown and a known name' "$(ask snmpget 1 -Cf "$prefix.3" "$prefix.0.0")" noSuchName
expect 'v2c: Get of an unknown and a known name' \
  "$(ask snmpget 2c "$prefix.3" "$prefix.0.0")" ".$prefix.3 $unknown|$link"
expect 'v2c: Get of a known and an unknown name' \
  "$(ask snmpget 2c "$prefix.0.0" "$prefix.3")" "$link|.$prefix.3 $unknown"
for last in 2.4 3 5; do
  expect "v1: GetNext past the end, from .$last" "$(ask snmpgetnext 1 "$prefix.$last")" noSuchName
  expect "v2c: GetNext past the end, from .$last" "$(ask snmpgetnext 2c "$prefix.$last")" \
    ".$prefix.$last $past_the_end"
done
expect 'the end of the table is logged only for the last variable' \
  "$(log_lines | grep 'END OF TABLE' | sort -u)" "Info: GetNextRequest($prefix.2.4) END OF TABLE"

expect 'v2c: GetBulk' "$(ask snmpbulkget 2c -Cn0 -Cr3 "$prefix")" "$link|$name|$version"
expect 'v2c: a bulk walk' "$(ask snmpbulkwalk 2c "$prefix")" \
  "$link|$name|$version|$rest|.$prefix.2.4 $past_the_end"

v3=(-v3 -u fred -a SHA -A secretsecret -x AES -X secretsecret -l authPriv -t 5 -r 1 -Oqn)
expect 'v3: a walk' "$(snmpwalk "${v3[@]}" "$address" "$prefix" | paste -sd'|')" \
  "$link|$name|$version|$rest|.$prefix.2.4 $past_the_end"
if [[ -n "$address6" ]]; then
  expect 'IPv6: a walk' "$(address=$address6 ask snmpwalk 2c "$prefix")" \
    "$link|$name|$version|$rest|.$prefix.2.4 $past_the_end"
  expect 'IPv6: v3: a Get' "$(snmpget "${v3[@]}" "$address6" "$prefix.1.1.0")" ".$prefix.1.1.0 \"1.x.x\""
fi

for variable in "${variables[@]}"; do
  type=i value=5
  [[ "$variable" != Product* ]] || type=s value=five
  expect "v2c: a Set of $variable" "$(ask snmpset 2c "${variable_oid[$variable]}" "$type" "$value")" notWritable
done
expect 'v1: a Set; SNMPv1 has no error notWritable' "$(ask snmpset 1 "$prefix.2.0" i 5)" noSuchName
expect 'v2c: a Set of an unknown name' "$(ask snmpset 2c "$prefix.3" i 5)" notWritable
expect 'no Set changed a value' "$(ask snmpwalk 1 "$prefix")" "$link|$name|$version|$rest|End of MIB"

expect_eventually 'requests and values are logged' "Info: GetRequest($prefix.1.1.7.8)
Info: GetStoredVar(ProductVersion) = STRING[5]: '1.x.x'" \
  eval "log_lines | grep -A1 -m1 -F 'GetRequest($prefix.1.1.7.8)'"
