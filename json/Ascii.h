#pragma once

#include <cstddef>
#include <string_view>

namespace Vask {

// Characters of ASCII, whatever the locale. Bytes over 0x7F are neither digits nor
// letters. All of this is pure, for any thread.

constexpr bool IsDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

// A letter in lower case; any other character as it is.
constexpr char FoldAscii(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// True if both texts are the same, apart from the case of their letters.
constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

}  // namespace Vask
