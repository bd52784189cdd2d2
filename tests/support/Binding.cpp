#include "tests/support/Binding.h"

#include <sstream>
#include <vector>

#include "BuildSettings.h"

namespace Vask::Tests {

namespace {

// Never destroyed, because threads of the host may use it while the process ends.
const std::string& PrefixText() {
  static const std::string& text =
      *new std::string("1.3.6.1.4.1." + std::to_string(CORVANE_ENTERPRISE) + ".333");
  return text;
}

std::vector<UINT> Parse(const std::string& dotted) {
  std::vector<UINT> ids;
  std::istringstream in(dotted);
  for (std::string part; std::getline(in, part, '.');)
    ids.push_back(static_cast<UINT>(std::stoul(part)));
  return ids;
}

}  // namespace

std::string FullName(const std::string& name) {
  return name.starts_with('P') ? PrefixText() + name.substr(1) : name;
}

std::string ShortName(const std::string& dotted) {
  return dotted.starts_with(PrefixText()) ? "P" + dotted.substr(PrefixText().size()) : dotted;
}

Binding::Binding(const std::string& name) {
  std::vector<UINT> ids = Parse(FullName(name));
  AsnObjectIdentifier lent{static_cast<UINT>(ids.size()), ids.data()};
  if (!ids.empty()) SnmpUtilOidCpy(&m_binding.name, &lent);
  m_binding.value.asnType = ASN_NULL;
}

Binding::~Binding() {
  if (m_binding.name.ids != nullptr) SnmpUtilOidFree(&m_binding.name);
  FreeText(m_binding.value);
}

SnmpVarBind& Binding::Again() {
  FreeText(m_binding.value);
  m_binding.value.asnType = ASN_NULL;
  return m_binding;
}

void FreeText(AsnAny& value) {
  if (value.asnType == ASN_OCTETSTRING && value.asnValue.string.dynamic)
    SnmpUtilMemFree(value.asnValue.string.stream);
}

std::string Binding::Name() const {
  std::string dotted;
  for (UINT i = 0; i < m_binding.name.idLength; ++i)
    dotted += (i > 0 ? "." : "") + std::to_string(m_binding.name.ids[i]);
  return ShortName(dotted);
}

std::string Binding::Value() const {
  const AsnAny& value = m_binding.value;
  if (value.asnType == ASN_INTEGER) return "INT " + std::to_string(value.asnValue.number);
  if (value.asnType != ASN_OCTETSTRING) return "none";
  const AsnOctetString& text = value.asnValue.string;
  return "STRING '" + std::string(reinterpret_cast<const char*>(text.stream), text.length) + "'";
}

}  // namespace Vask::Tests
