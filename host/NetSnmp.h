#pragma once

// net-snmp's headers, in the order that they need, and the conversions between
// its types and the host's. Compile the sources that include this header with
// the plain compiler, not with winelib's: these headers and <windows.h> exclude
// each other.

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <net-snmp/agent/agent_callbacks.h>

#include <vector>

#include "host/ExtensionModule.h"

namespace Host {

// net-snmp's sub-identifiers are as wide as a pointer.
[[nodiscard]] inline std::vector<oid> ToNetSnmp(const Oid& identifier) {
  return {identifier.begin(), identifier.end()};
}

[[nodiscard]] inline Oid FromNetSnmp(const oid* ids, std::size_t count) {
  Oid identifier;
  identifier.reserve(count);
  for (std::size_t i = 0; i < count; ++i) identifier.push_back(static_cast<std::uint32_t>(ids[i]));
  return identifier;
}

// Stores the value in a variable of net-snmp's. False if there is no memory or
// the value is NULL.
[[nodiscard]] bool StoreValue(netsnmp_variable_list& variable, const Value& value);

// Returns a value that a manager sent. NULL if the module's contract has no such
// kind of value.
[[nodiscard]] Value LoadValue(const netsnmp_variable_list& variable);

}  // namespace Host
