#include "platform/Snmp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// The contract's limit for an object identifier (RFC 2578, section 3.5).
constexpr UINT kMostSubIdentifiers = 128;

UINT* AllocateIds(UINT count) {
  return static_cast<UINT*>(SnmpUtilMemAlloc(static_cast<UINT>(count * sizeof(UINT))));
}

void CopyIds(UINT* destination, const AsnObjectIdentifier& source) {
  if (source.idLength != 0) std::memcpy(destination, source.ids, source.idLength * sizeof(UINT));
}

}  // namespace

extern "C" {

SNMPAPI SnmpUtilOidCpy(AsnObjectIdentifier* destination, AsnObjectIdentifier* source) {
  if (destination == nullptr || source == nullptr) return SNMPAPI_ERROR;
  UINT* ids = nullptr;
  if (source->idLength != 0) {
    ids = AllocateIds(source->idLength);
    if (ids == nullptr) return SNMPAPI_ERROR;
    CopyIds(ids, *source);
  }
  *destination = {source->idLength, ids};
  return SNMPAPI_NOERROR;
}

SNMPAPI SnmpUtilOidAppend(AsnObjectIdentifier* destination, AsnObjectIdentifier* source) {
  if (destination == nullptr || source == nullptr) return SNMPAPI_ERROR;
  if (source->idLength == 0) return SNMPAPI_NOERROR;
  if (source->idLength > kMostSubIdentifiers ||
      destination->idLength > kMostSubIdentifiers - source->idLength) {
    return SNMPAPI_ERROR;
  }
  const UINT length = destination->idLength + source->idLength;
  UINT* const ids = AllocateIds(length);
  if (ids == nullptr) return SNMPAPI_ERROR;
  CopyIds(ids, *destination);
  CopyIds(ids + destination->idLength, *source);
  SnmpUtilMemFree(destination->ids);
  *destination = {length, ids};
  return SNMPAPI_NOERROR;
}

SNMPAPI SnmpUtilOidNCmp(AsnObjectIdentifier* first, AsnObjectIdentifier* second, UINT count) {
  if (first == nullptr || second == nullptr) return 0;
  const UINT firstLength = std::min(first->idLength, count);
  const UINT secondLength = std::min(second->idLength, count);
  for (UINT i = 0; i < std::min(firstLength, secondLength); ++i) {
    if (first->ids[i] != second->ids[i]) return first->ids[i] < second->ids[i] ? -1 : 1;
  }
  if (firstLength == secondLength) return 0;
  return firstLength < secondLength ? -1 : 1;
}

SNMPAPI SnmpUtilOidCmp(AsnObjectIdentifier* first, AsnObjectIdentifier* second) {
  return SnmpUtilOidNCmp(first, second, UINT32_MAX);
}

void SnmpUtilOidFree(AsnObjectIdentifier* oid) {
  if (oid == nullptr) return;
  SnmpUtilMemFree(oid->ids);
  *oid = {0, nullptr};
}

LPVOID SnmpUtilMemAlloc(UINT bytes) {
  return std::malloc(bytes);
}

void SnmpUtilMemFree(LPVOID memory) {
  std::free(memory);
}

}  // extern "C"
