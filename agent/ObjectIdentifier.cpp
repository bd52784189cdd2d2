#include "agent/ObjectIdentifier.h"

#include <algorithm>
#include <charconv>

namespace Agent {

namespace {

// The utility functions take their arguments by pointer to non-const although
// they only read them.
AsnObjectIdentifier* Argument(const AsnObjectIdentifier& name) noexcept {
  return const_cast<AsnObjectIdentifier*>(&name);
}

constexpr std::size_t kMostDigits = 10;  // 4294967295

std::size_t RoomForDotted(const AsnObjectIdentifier& name) noexcept {
  return name.idLength * (kMostDigits + 1);
}

// Returns the end of the text.
char* WriteDotted(char* at, const AsnObjectIdentifier& name) noexcept {
  for (UINT i = 0; i < name.idLength; ++i) {
    if (i > 0) *at++ = '.';
    at = std::to_chars(at, at + kMostDigits, name.ids[i]).ptr;
  }
  return at;
}

}  // namespace

ObjectIdentifier::~ObjectIdentifier() {
  Clear();
}

void ObjectIdentifier::Clear() noexcept {
  if (m_name.ids != nullptr) SnmpUtilOidFree(&m_name);
  m_name = {0, nullptr};
}

bool ObjectIdentifier::Join(std::initializer_list<AsnObjectIdentifier> parts) {
  Clear();
  for (const AsnObjectIdentifier& part : parts) {
    if (part.idLength == 0) continue;
    const auto add = m_name.ids == nullptr ? &SnmpUtilOidCpy : &SnmpUtilOidAppend;
    if (add(&m_name, Argument(part)) == SNMPAPI_ERROR) return false;
  }
  return true;
}

void ObjectIdentifier::MoveInto(AsnObjectIdentifier& name) noexcept {
  if (name.ids != nullptr) SnmpUtilOidFree(&name);
  name = m_name;
  m_name = {0, nullptr};
}

AsnObjectIdentifier Lend(std::span<const UINT> ids) noexcept {
  return {static_cast<UINT>(ids.size()), const_cast<UINT*>(ids.data())};
}

int CompareLeading(const AsnObjectIdentifier& key, const AsnObjectIdentifier& name) noexcept {
  const UINT common = std::min(key.idLength, name.idLength);
  const int order = common == 0 ? 0 : SnmpUtilOidNCmp(Argument(key), Argument(name), common);
  if (order != 0) return order;
  return name.idLength < key.idLength ? 1 : 0;
}

int CompareWhole(const AsnObjectIdentifier& first, const AsnObjectIdentifier& second) noexcept {
  const int order = CompareLeading(first, second);
  return order == 0 && first.idLength < second.idLength ? -1 : order;
}

std::string DottedText(const AsnObjectIdentifier& name) {
  std::string text(RoomForDotted(name), '\0');
  const char* end = WriteDotted(text.data(), name);
  text.resize(static_cast<std::size_t>(end - text.data()));
  return text;
}

std::string DottedText(const AsnObjectIdentifier& prefix, const AsnObjectIdentifier& suffix) {
  return DottedText(prefix) + '.' + DottedText(suffix);
}

}  // namespace Agent
