#pragma once

#include <cstddef>
#include <string_view>

#include "json/FoldedKey.h"
#include "json/SixteenCharacters.h"

namespace Vask {

// The parser skips the plain characters of a string or a key with these functions. Texts
// end with a NUL. Everything here is pure, for any thread.

// The characters at which a run of plain ones in a string ends.
inline constexpr std::string_view kStringSpecials("\0\"\\\n", 4);

// Keys are folded while they are read. Both foldings stop at a special character.
inline constinit const KeyFolding kKeyFolding(KeyFolding::Letters::ToLower, kStringSpecials);
inline constinit const KeyFolding kPlainCharacters(KeyFolding::Letters::Kept, kStringSpecials);

// Folds keys as kKeyFolding does. Takes a whole piece at a time while the text has enough
// characters left.
class KeyReader {
 public:
  explicit KeyReader(const char* textEnd) : m_textEnd(textEnd) {}

  KeyPiece Piece(const char* at) const {
    if (m_textEnd - at < SixteenCharacters::kCount) return OddPiece(at);
    const SixteenCharacters text(at);
    const std::size_t length = text.PlainLength();
    if (length != SixteenCharacters::kCount && at[length] != '"') return OddPiece(at);
    return text.Lower(length);
  }

 private:
  // Not inlined: callers rarely need it, and so they keep their values in registers.
  [[gnu::noinline]] static KeyPiece OddPiece(const char* at) { return kKeyFolding.Piece(at); }

  const char* m_textEnd;
};
static_assert(SixteenCharacters::kCount == KeyPiece::kMaxLength);

inline const char* SkipPlain(const char* at) {
  while (kPlainCharacters.Fold(*at) != 0) ++at;
  return at;
}

// The same, sixteen at a time while the text has enough characters left.
inline const char* SkipPlain(const char* at, const char* textEnd) {
  while (textEnd - at >= SixteenCharacters::kCount) {
    const std::size_t length = SixteenCharacters(at).PlainLength();
    at += length;
    if (*at == '"') return at;
    if (length != SixteenCharacters::kCount) break;
  }
  return SkipPlain(at);
}

// Returns the number of bytes before the closing quote of a string that begins at
// `begin`. They are enough for its text, because no escape becomes longer.
inline std::size_t StringRoom(const char* begin) {
  const char* at = SkipPlain(begin);
  while (*at != '"' && *at != '\0') {
    if (*at == '\\' && at[1] != '\0') ++at;
    ++at;
  }
  return static_cast<std::size_t>(at - begin);
}

}  // namespace Vask
