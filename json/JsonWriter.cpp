#include "json/JsonWriter.h"

#include <array>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonScalars.h"

namespace Vask {

namespace {

// What the writer does with a byte: kPlain, kDrop, the number of bytes of a sequence that
// begins with it, or the letter of its escape.
constexpr char kPlain = 0;
constexpr char kDrop = 1;
constexpr char kTwoBytes = 2;
constexpr char kThreeBytes = 3;

constexpr std::array<char, 256> MakeTreatment() {
  std::array<char, 256> treatment{};
  for (unsigned c = 0; c < 256; ++c) {
    const bool isAscii = c >= 0x20 && c <= 0x7F;
    treatment[c] = isAscii              ? kPlain
                   : (c >> 5) == 0b110  ? kTwoBytes
                   : (c >> 4) == 0b1110 ? kThreeBytes
                                        : kDrop;
  }
  treatment[0x08] = 'b';
  treatment[0x09] = 't';
  treatment[0x0A] = 'n';
  treatment[0x0C] = 'f';
  treatment[0x0D] = 'r';
  treatment[static_cast<unsigned>('"')] = '"';
  treatment[static_cast<unsigned>('/')] = '/';
  treatment[static_cast<unsigned>('\\')] = '\\';
  return treatment;
}

constexpr std::array<char, 256> kTreatment = MakeTreatment();

void AppendCodeUnit(std::string& out, unsigned unit) {
  constexpr const char* kDigits = "0123456789abcdef";
  out += "\\u";
  for (unsigned shift = 16; shift != 0;) {
    shift -= 4;
    out += kDigits[(unit >> shift) & 0xF];
  }
}

unsigned DecodeSequence(const char* bytes, std::size_t length) {
  const unsigned firstBits = length == 2 ? 0x1F : 0x0F;
  unsigned unit = static_cast<unsigned char>(bytes[0]) & firstBits;
  for (std::size_t i = 1; i < length; ++i) {
    unit = unit << 6 | (static_cast<unsigned char>(bytes[i]) & 0x3F);
  }
  return unit;
}

// Appends the written form of the first character of the text, and returns the number of
// bytes that the character has in the text.
std::size_t AppendSpecial(std::string& out, std::string_view text, char treatment) {
  switch (treatment) {
    case kDrop:
      return 1;
    case kTwoBytes:
    case kThreeBytes: {
      const std::size_t length = treatment == kTwoBytes ? 2 : 3;
      if (length > text.size()) return 1;
      AppendCodeUnit(out, DecodeSequence(text.data(), length));
      return length;
    }
    default:
      out += '\\';
      out += treatment;
      return 1;
  }
}

}  // namespace

void AppendEscaped(std::string& out, std::string_view text) {
  text = text.substr(0, text.find('\0'));
  std::size_t plain = 0;  // where the run of unchanged characters begins
  std::size_t at = 0;
  while (at < text.size()) {
    const char treatment = kTreatment[static_cast<unsigned char>(text[at])];
    if (treatment == kPlain) {
      ++at;
      continue;
    }
    out += text.substr(plain, at - plain);
    at += AppendSpecial(out, text.substr(at), treatment);
    plain = at;
  }
  out += text.substr(plain);
}

void JsonWriter::Compact(const Json& root, std::string& out) {
  JsonWriter(out, false, 0).Run(root);
}

void JsonWriter::Pretty(const Json& root, std::uint32_t indentLevel, std::string& out) {
  JsonWriter(out, true, indentLevel).Run(root);
}

void JsonWriter::Run(const Json& root) {
  m_out.clear();
  Begin(root);
  while (!m_open.empty()) {
    Open& innermost = m_open.back();
    if (innermost.next == m_members.size()) {
      End();
    } else {
      NextMember(innermost);
    }
  }
}

void JsonWriter::Begin(const Json& value) {
  switch (value.Type()) {
    case JsonType::Object:
      return BeginObject(static_cast<const JsonObject&>(value));
    case JsonType::Array:
      return BeginArray(static_cast<const JsonArray&>(value));
    case JsonType::String:
      m_out += '"';
      AppendEscaped(m_out, static_cast<const JsonString&>(value).Text());
      m_out += '"';
      return;
    case JsonType::Number:
      m_out += static_cast<const JsonNumber&>(value).Text();
      return;
    case JsonType::Bool:
      m_out += static_cast<const JsonBool&>(value).Value() ? "true" : "false";
      return;
    case JsonType::Null:
      m_out += "null";
      return;
  }
}

void JsonWriter::BeginObject(const JsonObject& object) {
  m_out += m_pretty ? "{\n" : "{";
  m_open.push_back({true, m_members.size(), m_members.size(), m_keys.size()});
  ++m_indentLevel;
  const auto collect = [](const char* key, Json* const* value, void* context) {
    auto& writer = *static_cast<JsonWriter*>(context);
    writer.m_members.push_back({*value, writer.m_keys.size()});
    writer.m_keys += key;
    writer.m_keys += '\0';
    return true;
  };
  object.Members().ForEach("", collect, this);
}

void JsonWriter::BeginArray(const JsonArray& array) {
  m_out += m_pretty ? "[\n" : "[";
  m_open.push_back({false, m_members.size(), m_members.size(), m_keys.size()});
  ++m_indentLevel;
  for (const Json* element : array) m_members.push_back({element, 0});
}

void JsonWriter::NextMember(Open& open) {
  if (open.next != open.first) m_out += m_pretty ? ",\n" : ",";
  if (m_pretty) Indent();
  const Member member = m_members[open.next++];
  if (open.isObject) WriteKey(&m_keys[member.key]);
  Begin(*member.value);
}

void JsonWriter::WriteKey(const char* key) {
  m_out += '"';
  if (m_pretty) {
    m_out += key;
    m_out += "\": ";
  } else {
    AppendEscaped(m_out, key);
    m_out += "\":";
  }
}

void JsonWriter::End() {
  const Open closed = m_open.back();
  m_open.pop_back();
  m_members.resize(closed.first);
  m_keys.resize(closed.keys);
  --m_indentLevel;
  if (m_pretty) {
    m_out += '\n';
    Indent();
  }
  m_out += closed.isObject ? '}' : ']';
}

void JsonWriter::Indent() {
  m_out.append(2 * m_indentLevel, ' ');
}

}  // namespace Vask
