#pragma once

// The contract between the Windows SNMP service and its extension agents: the
// types of a request, the utility functions for object identifiers, and the
// entry points. On Windows the system's own header; elsewhere the same
// declarations.
//
// Wine's SnmpUtilOidCmp takes the identifier with fewer numbers for the lower
// one, whatever the numbers are. What is to be in order uses SnmpUtilOidNCmp
// with a count that no length reaches: that is right everywhere.

#if defined(_WIN32)
#include <windows.h>

#include <snmp.h>
#undef CreateEvent   // would rename Platform::Threading's operation in this file alone
#undef StartService  // and TimerService's
#else
#include "platform/linux/Snmp.h"
#endif
