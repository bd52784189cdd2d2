#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "json/Json.h"

// The values that hold no others: strings, numbers, truth values and null.

namespace Vask {

// A string: bytes, UTF-8 where they are not ASCII. The text never changes once
// the value is made.
class JsonString final : public Json {
 public:
  // A new string with a copy of `text`; the caller owns the one reference. It
  // lies in `memory`, or in the heap.
  [[nodiscard]] static JsonString* Create(std::string_view text = {},
                                          ValueMemory* memory = nullptr) {
    const auto copy = [text](char* buffer) { return text.copy(buffer, text.size()); };
    return CreateFilled(text.size(), copy, memory);
  }

  // A new string whose text is written in place: fill(buffer) gets room for
  // `capacity` bytes and returns how many it has used. It must not throw.
  template <class Fill>
  [[nodiscard]] static JsonString* CreateFilled(std::size_t capacity, Fill fill,
                                                ValueMemory* memory = nullptr) {
    auto* string = new (Place{memory, capacity + 1}) JsonString;
    char* buffer = reinterpret_cast<char*>(string) + sizeof(JsonString);
    string->m_size = fill(buffer);
    buffer[string->m_size] = '\0';
    return string;
  }

  // The whole text; it lives as long as the value.
  [[nodiscard]] std::string_view Text() const noexcept { return {CStr(), m_size}; }
  // The same, ended by a NUL.
  [[nodiscard]] const char* CStr() const noexcept {
    return reinterpret_cast<const char*>(this) + sizeof(JsonString);
  }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonString() override = default;

 private:
  JsonString() noexcept : Json(JsonType::String) {}

  std::size_t m_size = 0;  // the text lies behind the object
};

// How the text of a number is read. All three are pure and independent of the
// locale, and none of them fails: what does not fit goes to the nearest end.

// An optional '-' and the decimal digits after it, up to the first other
// character; saturates at the ends of 64 bits.
[[nodiscard]] std::int64_t ReadInteger(std::string_view text) noexcept;

// An optional '-', digits, '.', digits and an exponent, correctly rounded;
// infinite when too large, zero when too small.
[[nodiscard]] double ReadReal(std::string_view text) noexcept;

// Truncated toward zero; saturates at the ends of 64 bits.
[[nodiscard]] std::int64_t TruncateToInteger(double value) noexcept;

// A number: its text exactly as it was read, which is what gets written, and
// two readings of it. Which reading counts is told by IsInteger().
class JsonNumber final : public Json {
 public:
  // A number as a parser read it: '-', digits and, as the case may be, '.' and
  // 'e' parts, with `isInteger` false when there was a '.'.
  //
  // An integer is read up to its first non-digit ("1e3" is 1) and saturates at
  // the ends of 64 bits; its floating-point reading is that integer converted.
  // Otherwise the floating-point reading follows the whole text, whatever the
  // locale, and the integer one is it truncated toward zero, saturating too.
  //
  // The value lies in `memory`, or in the heap.
  [[nodiscard]] static JsonNumber* FromText(std::string_view text, bool isInteger,
                                            ValueMemory* memory = nullptr);

  // An integer; the text is that of "%d".
  [[nodiscard]] static JsonNumber* FromInt(std::int32_t value);

  [[nodiscard]] bool IsInteger() const noexcept { return m_isInteger; }
  [[nodiscard]] std::int64_t IntValue() const noexcept { return m_intValue; }
  [[nodiscard]] double DoubleValue() const noexcept { return m_doubleValue; }
  // Lives as long as the value; a NUL follows it.
  [[nodiscard]] std::string_view Text() const noexcept {
    return {reinterpret_cast<const char*>(this) + sizeof(JsonNumber), m_size};
  }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonNumber() override = default;

 private:
  JsonNumber(std::string_view text, bool isInteger) noexcept;

  bool m_isInteger;
  std::int64_t m_intValue;
  double m_doubleValue;
  std::size_t m_size = 0;  // the text lies behind the object
};

// A truth value: `true` or `false`.
class JsonBool final : public Json {
 public:
  explicit JsonBool(bool value = false) noexcept : Json(JsonType::Bool), m_value(value) {}

  [[nodiscard]] bool Value() const noexcept { return m_value; }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonBool() override = default;

 private:
  bool m_value;
};

// The value `null`.
class JsonNull final : public Json {
 public:
  JsonNull() noexcept : Json(JsonType::Null) {}

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonNull() override = default;
};

}  // namespace Vask
