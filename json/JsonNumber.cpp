#include "json/JsonNumber.h"

#include <charconv>
#include <iterator>
#include <limits>

#include "json/JsonWriter.h"
#include "json/NumberReading.h"

namespace Vask {

JsonNumber* JsonNumber::FromText(std::string_view text, bool isInteger, ValueMemory* memory) {
  return new (Place{memory, text.size() + 1}) JsonNumber(text, isInteger);
}

JsonNumber* JsonNumber::FromInt(std::int32_t value) {
  char text[std::numeric_limits<std::int32_t>::digits10 + 2];
  const char* end = std::to_chars(std::begin(text), std::end(text), value).ptr;
  return FromText({text, static_cast<std::size_t>(end - text)}, true);
}

JsonNumber::JsonNumber(std::string_view text, bool isInteger) noexcept
    : Json(JsonType::Number), m_isInteger(isInteger), m_size(text.size()) {
  if (isInteger) {
    m_intValue = ReadInteger(text);
    m_doubleValue = static_cast<double>(m_intValue);
  } else {
    m_doubleValue = ReadReal(text);
    m_intValue = TruncateToInteger(m_doubleValue);
  }
  char* copy = reinterpret_cast<char*>(this) + sizeof(JsonNumber);
  copy[text.copy(copy, text.size())] = '\0';
}

void JsonNumber::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonNumber::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

}  // namespace Vask
