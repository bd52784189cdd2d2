#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "json/Json.h"

// The values that hold no others: strings, numbers, truth values and null.

namespace Vask {

// A string: bytes, UTF-8 where they are not ASCII. The text never changes after the value
// was made.
class JsonString final : public Json {
 public:
  // A new string with a copy of `text`; the caller owns the one reference. It
  // lies in `memory`, or in the heap.
  [[nodiscard]] static JsonString* Create(std::string_view text = {},
                                          ValueMemory* memory = nullptr) {
    const auto copy = [text](char* buffer) { return text.copy(buffer, text.size()); };
    return CreateFilled(text.size(), copy, memory);
  }

  // A new string whose text is written in place: fill(buffer) gets room for `capacity`
  // bytes and returns the number of bytes that it has used. It must not throw.
  template <class Fill>
  [[nodiscard]] static JsonString* CreateFilled(std::size_t capacity, Fill fill,
                                                ValueMemory* memory = nullptr) {
    auto* string = new (Place{memory, capacity + 1}) JsonString;
    char* buffer = reinterpret_cast<char*>(string) + sizeof(JsonString);
    string->m_size = fill(buffer);
    buffer[string->m_size] = '\0';
    return string;
  }

  // The whole text. Valid as long as the value lives.
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

// Read the text of a number. All three are pure and independent of the locale. None of
// them fails: a number that does not fit becomes the nearest limit.

// An optional '-' and the decimal digits after it, up to the first other character;
// saturates at the limits of 64 bits.
[[nodiscard]] std::int64_t ReadInteger(std::string_view text) noexcept;

// An optional '-', digits, '.', digits and an exponent, correctly rounded;
// infinite when too large, zero when too small.
[[nodiscard]] double ReadReal(std::string_view text) noexcept;

// Truncated toward zero; saturates at the limits of 64 bits.
[[nodiscard]] std::int64_t TruncateToInteger(double value) noexcept;

// A number: its text exactly as it was read, and two readings of it. Writing repeats the
// text. IsInteger() determines which reading counts.
class JsonNumber final : public Json {
 public:
  // A number as a parser read it: '-', digits and, if present, the '.' and 'e' parts.
  // `isInteger` is false if there was a '.'.
  //
  // An integer is read up to its first non-digit ("1e3" is 1) and saturates at the limits
  // of 64 bits; its floating-point reading is that integer, converted. For any other
  // number the floating-point reading takes the whole text, independent of the locale.
  // The integer reading is that value truncated toward zero, and saturates too.
  //
  // The value lies in `memory`, or in the heap.
  [[nodiscard]] static JsonNumber* FromText(std::string_view text, bool isInteger,
                                            ValueMemory* memory = nullptr);

  // The same for a text of `size` digits, fewer than kDigitsRoom, whose value is known.
  // kDigitsRoom bytes of `digits` must be readable: a copy of a fixed length needs no call.
  static constexpr std::size_t kDigitsRoom = 8;
  [[nodiscard]] static JsonNumber* FromDigits(const char* digits, std::size_t size,
                                              std::int32_t value, ValueMemory* memory) {
    auto* number = new (Place{memory, kDigitsRoom}) JsonNumber(size, value);
    char* copy = reinterpret_cast<char*>(number) + sizeof(JsonNumber);
    std::memcpy(copy, digits, kDigitsRoom);
    copy[size] = '\0';
    return number;
  }

  // An integer; the text is that of "%d".
  [[nodiscard]] static JsonNumber* FromInt(std::int32_t value);

  [[nodiscard]] bool IsInteger() const noexcept { return m_isInteger; }
  [[nodiscard]] std::int64_t IntValue() const noexcept { return m_intValue; }
  [[nodiscard]] double DoubleValue() const noexcept { return m_doubleValue; }
  // Valid as long as the value lives; a NUL follows it.
  [[nodiscard]] std::string_view Text() const noexcept {
    return {reinterpret_cast<const char*>(this) + sizeof(JsonNumber), m_size};
  }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonNumber() override = default;

 private:
  JsonNumber(std::string_view text, bool isInteger) noexcept;
  JsonNumber(std::size_t size, std::int32_t value) noexcept
      : Json(JsonType::Number),
        m_isInteger(true),
        m_intValue(value),
        m_doubleValue(value),
        m_size(size) {}

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
