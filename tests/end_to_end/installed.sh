# Under Wine the scenario runs on the agent as its package installs it: the host
# finds the DLL by the registration, as the SNMP service would.

package=

# msi VERB: what the installer makes of the package; its exit status.
msi() {
  local status=0
  timeout 120 wine msiexec "/$1" "$package" /qn >"$work/msiexec" 2>&1 </dev/null || status=$?
  echo "$status"
}

registered_now() {
  "$host_program" --registered --listen "udp:$address" 2>&1 </dev/null | tr -d '\r'
}

install_agent() {
  package=$("$top/installer/build-msi" --output "$work" --dll "$top/build/windows/SNMPd.dll")
  expect 'the package installs' "$(msi i)" 0
  module=--registered
}

# The last thing of all, whatever came before.
remove_agent() {
  [[ -n "$package" ]] || return 0
  local removed
  removed=$(msi x)
  package=
  expect 'the package is removed' "$removed" 0
}

agent_is_found() {
  expect 'the host finds it where the package put it' "$(head -n 1 "$host_said" | tr -d '\r')" \
    'CorvaneSnmpAgent is registered: C:\Program Files\Veltrin Systems\Corvane SNMP\SNMPd.dll'
}

agent_is_gone() {
  expect 'nothing is registered then' "$(registered_now)" \
    'snmphost: no agent is registered: there is no key HKLM\SYSTEM\CurrentControlSet\Services\SNMP\Parameters\ExtensionAgents'
}
