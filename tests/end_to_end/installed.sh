# Under Wine the test installs the agent from its package. The host finds the DLL by the
# registration, in the same way as the Windows SNMP service.

package=

# msi VERB: runs the installer on the package and prints its exit status.
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

# Also called at exit, so that a failed test leaves no package installed.
remove_agent() {
  [[ -n "$package" ]] || return 0
  local removed
  removed=$(msi x)
  package=
  expect 'the package is removed' "$removed" 0
}

agent_is_found() {
  expect 'the host finds the DLL in the folder of the package' "$(head -n 1 "$host_said" | tr -d '\r')" \
    'CorvaneSnmpAgent is registered: C:\Program Files\Veltrin Systems\Corvane SNMP\SNMPd.dll'
}

agent_is_gone() {
  expect 'nothing is registered after the removal' "$(registered_now)" \
    'snmphost: no agent is registered: there is no key HKLM\SYSTEM\CurrentControlSet\Services\SNMP\Parameters\ExtensionAgents'
}
