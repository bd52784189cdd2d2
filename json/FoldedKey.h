#pragma once

#include <cstddef>

#include "json/KeyPiece.h"

namespace Vask {

// A key that is looked up again and again, with its letters folded to lower case
// beforehand (by the compiler, where it is a constant). Its text is lent, and
// lives as long as this does.
class FoldedKey {
 public:
  // Not explicit: any text is a key.
  constexpr FoldedKey(const char* text) noexcept : m_text(text) {
    if (text == nullptr) return;
    while (m_first.length != KeyPiece::kMaxLength && text[m_first.length] != '\0') {
      const char c = text[m_first.length];
      m_first.Add(static_cast<signed char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c));
    }
  }

  [[nodiscard]] constexpr const char* Text() const noexcept { return m_text; }
  [[nodiscard]] constexpr const KeyPiece& First() const noexcept { return m_first; }

 private:
  const char* m_text;
  KeyPiece m_first;
};

}  // namespace Vask
