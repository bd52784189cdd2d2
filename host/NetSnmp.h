#pragma once

// net-snmp's headers, in the order that they need. The sources that include
// this one are compiled with the plain compiler, never with winelib's: these
// headers and <windows.h> cannot live in one source.

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <vector>

#include "host/Oid.h"

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

}  // namespace Host
