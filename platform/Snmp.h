#pragma once

// The contract between the Windows SNMP service and its extension agents: the
// types of a request, the utility functions for object identifiers, and the
// constants. On Windows the system's own header declares it. Elsewhere this file
// declares the part that the agent and its hosts use, with the contract's names,
// types and rules: the receiver of dynamic memory frees it with SnmpUtilMemFree,
// and functions return 0 for failure and do not throw.
//
// Wine's SnmpUtilOidCmp treats the identifier with fewer numbers as the lower one,
// independent of the numbers. To compare for order, call SnmpUtilOidNCmp with a count
// that is larger than any length: its result is right on all systems.

#if defined(_WIN32)
#include <windows.h>

#include <snmp.h>
#undef CreateEvent   // would rename Platform::Threading's operation in this file alone
#undef StartService  // and TimerService's
#else
#include <cstdint>

using BYTE = std::uint8_t;
using BOOL = std::int32_t;
using UINT = std::uint32_t;
using INT = std::int32_t;
using DWORD = std::uint32_t;
using LPVOID = void*;
using HANDLE = void*;
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define SNMP_FUNC_TYPE
#define SNMPAPI INT
#define SNMPAPI_NOERROR TRUE
#define SNMPAPI_ERROR FALSE

struct AsnOctetString {
  BYTE* stream;
  UINT length;
  BOOL dynamic;
};

struct AsnObjectIdentifier {
  UINT idLength;
  UINT* ids;
};

using AsnInteger = std::int32_t;
using AsnObjectName = AsnObjectIdentifier;

struct AsnAny {
  BYTE asnType;
  union {
    AsnInteger number;
    AsnOctetString string;
    AsnObjectIdentifier object;
  } asnValue;
};
using AsnObjectSyntax = AsnAny;

struct SnmpVarBind {
  AsnObjectName name;
  AsnObjectSyntax value;
};

struct SnmpVarBindList {
  SnmpVarBind* list;
  UINT len;
};

#define ASN_INTEGER 0x02
#define ASN_OCTETSTRING 0x04
#define ASN_NULL 0x05
#define ASN_OBJECTIDENTIFIER 0x06
#define ASN_SEQUENCE 0x30

#define SNMP_PDU_GET 0xA0
#define SNMP_PDU_GETNEXT 0xA1
#define SNMP_PDU_RESPONSE 0xA2
#define SNMP_PDU_SET 0xA3

#define SNMP_ERRORSTATUS_NOERROR 0
#define SNMP_ERRORSTATUS_NOSUCHNAME 2
#define SNMP_ERRORSTATUS_GENERR 5
#define SNMP_ERRORSTATUS_NOTWRITABLE 17

#define SNMP_GENERICTRAP_ENTERSPECIFIC 6

extern "C" {
// Copies source into destination, allocating its identifiers.
SNMPAPI SnmpUtilOidCpy(AsnObjectIdentifier* destination, AsnObjectIdentifier* source);
// Appends source to destination, growing its identifiers.
SNMPAPI SnmpUtilOidAppend(AsnObjectIdentifier* destination, AsnObjectIdentifier* source);
// Returns a number below, equal to or above 0: compares sub-identifier by sub-identifier.
// If one identifier begins with the other, the shorter one is lower.
SNMPAPI SnmpUtilOidCmp(AsnObjectIdentifier* first, AsnObjectIdentifier* second);
// The same over at most `count` leading sub-identifiers.
SNMPAPI SnmpUtilOidNCmp(AsnObjectIdentifier* first, AsnObjectIdentifier* second, UINT count);
// Frees the identifiers and leaves an empty one.
void SnmpUtilOidFree(AsnObjectIdentifier* oid);
// Null if there is no memory.
LPVOID SnmpUtilMemAlloc(UINT bytes);
void SnmpUtilMemFree(LPVOID memory);
}
#endif
