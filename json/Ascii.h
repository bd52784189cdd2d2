#pragma once

#include <cstddef>
#include <string_view>

namespace Vask {

// Functions for ASCII characters, independent of the locale. Bytes over 0x7F are neither
// digits nor letters. Pure functions, for any thread.

constexpr bool IsDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

// A letter in lower case; any other character as it is.
constexpr char FoldAscii(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Cold path: keep it out of the inlined code, so that a sequence of comparisons with many
// names holds little more than one comparison of lengths for each.
[[gnu::noinline]] constexpr bool HaveSameLetters(const char* a, const char* b,
                                                 std::size_t length) noexcept {
  for (std::size_t i = 0; i < length; ++i) {
    if (a[i] != b[i] && FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

// True if both texts are the same, apart from the case of their letters.
constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return a.size() == b.size() && HaveSameLetters(a.data(), b.data(), a.size());
}

}  // namespace Vask
