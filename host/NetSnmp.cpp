#include "host/NetSnmp.h"

namespace Host {
namespace {

bool StoreNumber(netsnmp_variable_list& variable, std::uint8_t type, std::int32_t number) {
  // All kinds but INTEGER are unsigned. net-snmp keeps both in a long.
  const long wide = type == ASN_INTEGER ? static_cast<long>(number)
                                        : static_cast<long>(static_cast<std::uint32_t>(number));
  return snmp_set_var_typed_value(&variable, type, &wide, sizeof(wide)) == 0;
}

}  // namespace

bool StoreValue(netsnmp_variable_list& variable, const Value& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value.content)) {
    return StoreNumber(variable, value.asnType, *number);
  }
  if (const auto* bytes = std::get_if<std::string>(&value.content)) {
    return snmp_set_var_typed_value(&variable, value.asnType, bytes->data(), bytes->size()) == 0;
  }
  if (const auto* identifier = std::get_if<Oid>(&value.content)) {
    const std::vector<oid> ids = ToNetSnmp(*identifier);
    return snmp_set_var_typed_value(&variable, value.asnType, ids.data(),
                                    ids.size() * sizeof(oid)) == 0;
  }
  return false;
}

Value LoadValue(const netsnmp_variable_list& variable) {
  Value value;
  switch (variable.type) {
    case ASN_INTEGER:
    case ASN_COUNTER:
    case ASN_GAUGE:
    case ASN_TIMETICKS:
      value.content = static_cast<std::int32_t>(*variable.val.integer);
      break;
    case ASN_OCTET_STR:
    case ASN_IPADDRESS:
    case ASN_OPAQUE:
      value.content =
          std::string(reinterpret_cast<const char*>(variable.val.string), variable.val_len);
      break;
    case ASN_OBJECT_ID:
      value.content = FromNetSnmp(variable.val.objid, variable.val_len / sizeof(oid));
      break;
    default:
      return value;
  }
  value.asnType = variable.type;
  return value;
}

}  // namespace Host
