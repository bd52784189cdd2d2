#pragma once

#include <array>

namespace Vask {

// How a dictionary changes the characters of its keys: ASCII letters to one
// case, or nothing; bytes over 0x7F always stay. The result is the signed byte
// by which nodes are ordered, whatever `char` is on this machine.
class KeyFolding {
 public:
  // The upper case is looked at only when case does not matter.
  static const KeyFolding& For(bool caseSensitive, bool foldToUpper) noexcept {
    return caseSensitive ? kNone : foldToUpper ? kToUpper : kToLower;
  }

  signed char Fold(char c) const noexcept { return m_folded[static_cast<unsigned char>(c)]; }

 private:
  constexpr KeyFolding(unsigned first, unsigned last, unsigned flipped) : m_folded{} {
    for (unsigned c = 0; c < m_folded.size(); ++c) {
      const unsigned folded = c >= first && c <= last ? c ^ flipped : c;
      m_folded[c] = static_cast<signed char>(static_cast<unsigned char>(folded));
    }
  }

  static const KeyFolding kNone;
  static const KeyFolding kToLower;
  static const KeyFolding kToUpper;

  std::array<signed char, 256> m_folded;
};

}  // namespace Vask
