#pragma once

#include "host/ExtensionModule.h"
#include "host/NetSnmp.h"

namespace Host {

// Gives a variable of net-snmp's this value. False when there is no memory or
// the value has none to give (NULL).
[[nodiscard]] bool StoreValue(netsnmp_variable_list& variable, const Value& value);

// The value that a manager sent, as the module wants it: NULL when its kind is
// none that the module's contract has a place for.
[[nodiscard]] Value LoadValue(const netsnmp_variable_list& variable);

}  // namespace Host
