#pragma once

#include <array>
#include <string_view>

#include "json/KeyPiece.h"

namespace Vask {

// How a dictionary changes the characters of its keys: ASCII letters to one
// case, or nothing; bytes over 0x7F always stay. The result is the signed byte
// by which nodes are ordered, whatever `char` is on this machine. A key ends at
// the first character that becomes zero: at its NUL and, for a reader that
// knows more of them, at other ends.
class KeyFolding {
 public:
  enum class Letters { Kept, ToLower, ToUpper };

  constexpr explicit KeyFolding(Letters letters, std::string_view ends = {}) : m_folded{} {
    for (unsigned c = 0; c < m_folded.size(); ++c) {
      const bool folds = letters == Letters::ToLower   ? c >= 'A' && c <= 'Z'
                         : letters == Letters::ToUpper ? c >= 'a' && c <= 'z'
                                                       : false;
      m_folded[c] = static_cast<signed char>(static_cast<unsigned char>(folds ? c ^ 0x20 : c));
    }
    for (const char end : ends) m_folded[static_cast<unsigned char>(end)] = 0;
  }

  // The one that a dictionary with these settings uses; upper case is looked at
  // only when case does not matter. Lives as long as the process.
  static const KeyFolding& For(bool caseSensitive, bool foldToUpper) noexcept {
    return caseSensitive ? s_kept : foldToUpper ? s_toUpper : s_toLower;
  }

  // The piece of a key that begins at `at`.
  constexpr KeyPiece Piece(const char* at) const noexcept {
    KeyPiece piece;
    while (piece.length != KeyPiece::kMaxLength) {
      const signed char folded = Fold(at[piece.length]);
      if (folded == 0) break;
      piece.Add(folded);
    }
    return piece;
  }

  bool IsToLower() const noexcept { return this == &s_toLower; }

  constexpr signed char Fold(char c) const noexcept {
    return m_folded[static_cast<unsigned char>(c)];
  }

 private:
  static const KeyFolding s_kept;
  static const KeyFolding s_toLower;
  static const KeyFolding s_toUpper;

  std::array<signed char, 256> m_folded;
};

}  // namespace Vask
