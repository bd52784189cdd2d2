#pragma once

#include <string_view>

#include "json/Json.h"

namespace Vask {

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
  std::size_t m_size;  // the text lies behind the object
};

}  // namespace Vask
