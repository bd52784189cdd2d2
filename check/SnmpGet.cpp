#include "check/SnmpGet.h"

#include <cstddef>

namespace Check {
namespace {

// Tags of the Basic Encoding Rules and of SNMP (RFC 3416, section 3).
enum Tag : unsigned char {
  kInteger = 0x02,
  kOctetString = 0x04,
  kNull = 0x05,
  kObjectIdentifier = 0x06,
  kSequence = 0x30,
  kCounter32 = 0x41,
  kGauge32 = 0x42,
  kTimeTicks = 0x43,
  kNoSuchObject = 0x80,
  kNoSuchInstance = 0x81,
  kEndOfMibView = 0x82,
  kGetRequest = 0xA0,
  kResponse = 0xA2,
};

constexpr std::int32_t kVersion2c = 1;

std::string Element(unsigned char tag, std::string_view content) {
  std::string element(1, static_cast<char>(tag));
  if (content.size() < 0x80) {
    element.push_back(static_cast<char>(content.size()));
  } else if (content.size() < 0x100) {
    element.push_back(static_cast<char>(0x81));
    element.push_back(static_cast<char>(content.size()));
  } else {
    element.push_back(static_cast<char>(0x82));
    element.push_back(static_cast<char>(content.size() >> 8 & 0xFF));
    element.push_back(static_cast<char>(content.size() & 0xFF));
  }
  return element.append(content);
}

std::string Integer(std::int32_t number) {
  const auto bits = static_cast<std::uint32_t>(number);
  std::string content;
  for (int shift = 24; shift >= 0; shift -= 8) {
    content.push_back(static_cast<char>(bits >> shift & 0xFF));
  }
  // The shortest form: no leading byte that repeats the sign of the next one.
  while (content.size() > 1 && ((content[0] == 0 && (content[1] & 0x80) == 0) ||
                                (content[0] == '\xFF' && (content[1] & 0x80) != 0))) {
    content.erase(0, 1);
  }
  return Element(kInteger, content);
}

std::string Identifier(const Oid& oid) {
  std::string content(1, static_cast<char>(oid[0] * 40 + oid[1]));
  for (std::size_t i = 2; i < oid.size(); ++i) {
    std::string groups(1, static_cast<char>(oid[i] & 0x7F));
    for (std::uint32_t rest = oid[i] >> 7; rest != 0; rest >>= 7) {
      groups.insert(0, 1, static_cast<char>(0x80 | (rest & 0x7F)));
    }
    content += groups;
  }
  return Element(kObjectIdentifier, content);
}

// Takes elements from the front of a text. After a failure all further calls fail.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : m_rest(bytes) {}

  [[nodiscard]] bool AtEnd() const { return m_rest.empty(); }

  struct Item {
    unsigned char tag;
    std::string_view content;
  };

  std::optional<Item> Take() {
    if (m_rest.size() < 2) return Fail();
    const auto tag = static_cast<unsigned char>(m_rest[0]);
    std::size_t length = static_cast<unsigned char>(m_rest[1]);
    m_rest.remove_prefix(2);
    if (length >= 0x80) {
      const std::size_t bytes = length & 0x7F;
      // A datagram has fewer than 65,536 bytes; longer forms may have leading zeros.
      if (bytes == 0 || bytes > 4 || m_rest.size() < bytes) return Fail();
      length = 0;
      for (std::size_t i = 0; i < bytes; ++i) {
        length = length << 8 | static_cast<unsigned char>(m_rest[i]);
      }
      m_rest.remove_prefix(bytes);
    }
    if (length > m_rest.size()) return Fail();
    const Item item{tag, m_rest.substr(0, length)};
    m_rest.remove_prefix(length);
    return item;
  }

  std::optional<std::string_view> Take(unsigned char tag) {
    const std::optional<Item> item = Take();
    if (!item || item->tag != tag) return {};
    return item->content;
  }

 private:
  std::nullopt_t Fail() {
    m_rest = {};
    return std::nullopt;
  }

  std::string_view m_rest;
};

std::optional<std::int64_t> ReadNumber(std::string_view content, bool isSigned) {
  if (content.empty() || content.size() > 5) return {};
  std::int64_t number = isSigned && (content[0] & 0x80) != 0 ? -1 : 0;
  for (const char byte : content) number = number * 256 + static_cast<unsigned char>(byte);
  return number;
}

std::optional<Oid> ReadIdentifier(std::string_view content) {
  if (content.empty()) return {};
  const auto first = static_cast<unsigned char>(content[0]);
  Oid oid{first / 40u, first % 40u};
  std::uint64_t number = 0;
  bool open = false;
  for (const char byte : content.substr(1)) {
    number = number << 7 | (static_cast<unsigned char>(byte) & 0x7Fu);
    if (number > 0xFFFFFFFF) return {};
    open = (byte & 0x80) != 0;
    if (open) continue;
    oid.push_back(static_cast<std::uint32_t>(number));
    number = 0;
  }
  if (open) return {};
  return oid;
}

std::optional<std::int64_t> TakeInteger(Reader& reader) {
  const auto content = reader.Take(kInteger);
  return content ? ReadNumber(*content, true) : std::nullopt;
}

bool ReadValue(const Reader::Item& value, SnmpBinding& binding) {
  switch (value.tag) {
    case kInteger:
    case kCounter32:
    case kGauge32:
    case kTimeTicks: {
      const auto number = ReadNumber(value.content, value.tag == kInteger);
      binding.kind = SnmpBinding::Kind::kNumber;
      binding.number = number.value_or(0);
      return number.has_value();
    }
    case kOctetString:
      binding.kind = SnmpBinding::Kind::kText;
      binding.text = value.content;
      return true;
    case kNoSuchObject:
    case kNoSuchInstance:
    case kEndOfMibView:
      binding.kind = SnmpBinding::Kind::kMissing;
      return true;
    default:
      return true;
  }
}

std::optional<SnmpBinding> TakeBinding(Reader& list) {
  const auto pair = list.Take(kSequence);
  if (!pair) return {};
  Reader reader(*pair);
  const auto name = reader.Take(kObjectIdentifier);
  const auto value = reader.Take();
  if (!name || !value || !reader.AtEnd()) return {};
  const auto oid = ReadIdentifier(*name);
  if (!oid) return {};
  SnmpBinding binding;
  binding.oid = *oid;
  if (!ReadValue(*value, binding)) return {};
  return binding;
}

}  // namespace

std::string DottedText(const Oid& oid) {
  std::string text;
  for (const std::uint32_t number : oid) {
    if (!text.empty()) text.push_back('.');
    text += std::to_string(number);
  }
  return text;
}

std::string EncodeGet(std::string_view community, std::int32_t requestId,
                      const std::vector<Oid>& oids) {
  std::string bindings;
  for (const Oid& oid : oids) {
    bindings += Element(kSequence, Identifier(oid) + Element(kNull, {}));
  }
  const std::string request = Element(
      kGetRequest, Integer(requestId) + Integer(0) + Integer(0) + Element(kSequence, bindings));
  return Element(kSequence, Integer(kVersion2c) + Element(kOctetString, community) + request);
}

std::optional<SnmpResponse> DecodeResponse(std::string_view datagram) {
  Reader outer(datagram);
  const auto message = outer.Take(kSequence);
  if (!message) return {};
  Reader envelope(*message);
  const auto version = TakeInteger(envelope);
  const auto community = envelope.Take(kOctetString);
  const auto pdu = envelope.Take(kResponse);
  if (!version || !community || !pdu) return {};
  Reader reader(*pdu);
  const auto requestId = TakeInteger(reader);
  const auto errorStatus = TakeInteger(reader);
  const auto errorIndex = TakeInteger(reader);
  const auto list = reader.Take(kSequence);
  if (!requestId || !errorStatus || !errorIndex || !list) return {};
  SnmpResponse response{*requestId, *errorStatus, {}};
  for (Reader bindings(*list); !bindings.AtEnd();) {
    const auto binding = TakeBinding(bindings);
    if (!binding) return {};
    response.bindings.push_back(*binding);
  }
  return response;
}

}  // namespace Check
