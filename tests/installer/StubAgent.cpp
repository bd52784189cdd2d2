// An extension agent without variables. The installer's tests use it as the DLL of an
// older or newer version; only its version matters.

#include <winsock2.h>

#include <windows.h>

#include <snmp.h>

#define EXPORT extern "C" __declspec(dllexport)

namespace {
UINT g_prefix[] = {1, 3, 6, 1, 4, 1, CORVANE_ENTERPRISE, 333};
}  // namespace

EXPORT BOOL WINAPI SnmpExtensionInit(DWORD, HANDLE* trapEvent, AsnObjectIdentifier* view) {
  *trapEvent = nullptr;
  *view = AsnObjectIdentifier{8, g_prefix};
  return TRUE;
}

EXPORT BOOL WINAPI SnmpExtensionQuery(BYTE, SnmpVarBindList*, AsnInteger32*, AsnInteger32*) {
  return FALSE;
}

EXPORT BOOL WINAPI SnmpExtensionTrap(AsnObjectIdentifier*, AsnInteger32*, AsnInteger32*,
                                     AsnTimeticks*, SnmpVarBindList*) {
  return FALSE;
}
