#include "json/JsonScalars.h"

#include <charconv>
#include <iterator>
#include <limits>

#include "json/Ascii.h"
#include "json/JsonWriter.h"

namespace Vask {

namespace {

// For a number that does not fit into a double: returns true if it is too large, false if
// it is too small. The position of its first significant digit decides.
bool IsTooLarge(std::string_view text) {
  std::int64_t exponent = 0;
  const std::size_t e = text.find_first_of("eE");
  if (e != text.npos) {
    std::string_view digits = text.substr(e + 1);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    // Larger than the length of any text, and far below the limits of 64 bits.
    constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 2;
    exponent = ReadInteger(digits);
    exponent = exponent > kFar ? kFar : exponent < -kFar ? -kFar : exponent;
  }
  const std::string_view mantissa = text.substr(0, e);
  const auto first = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
  const auto point = static_cast<std::int64_t>(mantissa.find('.'));
  return exponent + point - first > 0;
}

}  // namespace

std::int64_t ReadInteger(std::string_view text) noexcept {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  std::int64_t value = 0;  // counts down, because the negative range is larger
  for (const char c : text) {
    if (!IsDigit(c)) break;
    const int digit = negative ? '0' - c : c - '0';
    if (__builtin_mul_overflow(value, 10, &value) || __builtin_add_overflow(value, digit, &value)) {
      return negative ? std::numeric_limits<std::int64_t>::min() : kMax;
    }
  }
  return value;
}

double ReadReal(std::string_view text) noexcept {
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc::result_out_of_range) return value;
  value = IsTooLarge(text) ? std::numeric_limits<double>::infinity() : 0.0;
  return text.starts_with('-') ? -value : value;
}

std::int64_t TruncateToInteger(double value) noexcept {
  constexpr double kEnd = 9223372036854775808.0;  // 2^63, the first that does not fit
  if (value >= kEnd) return std::numeric_limits<std::int64_t>::max();
  if (value < -kEnd) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

void JsonString::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonString::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

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

void JsonBool::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonBool::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

void JsonNull::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonNull::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

}  // namespace Vask
