#pragma once

#include <cstdint>
#include <string_view>

namespace Vask {

// A decimal digit, whatever the locale.
constexpr bool IsDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

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

}  // namespace Vask
