#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "json/Ascii.h"

namespace Vask {

// Keys as the dictionary compares them: folded, and up to sixteen characters at a time.
// Everything here is pure, for any thread.

// The next characters of a key, folded as its dictionary folds keys. A key that is
// longer than one piece comes in several; the last is shorter than the others, and may
// be empty.
struct KeyPiece {
  static constexpr std::size_t kMaxLength = 16;

  // Eight characters each, the first in the lowest byte; zeros behind the last. Words
  // are compared and moved in registers.
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  std::size_t length = 0;

  // The order of siblings follows this character. It is signed, also on a machine whose
  // `char` is not.
  [[nodiscard]] constexpr signed char First() const noexcept {
    return static_cast<signed char>(low);
  }

  // Adds a character. `length` must be below kMaxLength.
  constexpr void Add(signed char character) noexcept {
    const auto bits = std::uint64_t{static_cast<unsigned char>(character)} << 8 * (length % 8);
    (length < 8 ? low : high) |= bits;
    ++length;
  }

  // The first `count` characters, and those behind them; `count` is at most `length`.
  [[nodiscard]] constexpr KeyPiece CutTo(std::size_t count) const noexcept {
    if (count <= 8) return {low & Mask(count), 0, count};
    return {low, high & Mask(count - 8), count};
  }
  [[nodiscard]] constexpr KeyPiece Behind(std::size_t count) const noexcept {
    if (count >= 8) return {Without(high, count - 8), 0, length - count};
    const std::uint64_t moved = count == 0 ? 0 : high << 8 * (8 - count);
    return {Without(low, count) | moved, Without(high, count), length - count};
  }

  // Returns how many leading characters of both pieces are the same.
  [[nodiscard]] constexpr std::size_t CommonLength(const KeyPiece& other) const noexcept {
    if (low != other.low) return static_cast<std::size_t>(std::countr_zero(low ^ other.low)) / 8;
    if (high == other.high) return length;
    return 8 + static_cast<std::size_t>(std::countr_zero(high ^ other.high)) / 8;
  }

  // Writes kMaxLength bytes: the characters, and zeros behind the last.
  void CopyTo(char* out) const noexcept {
    const std::uint64_t words[] = {InMemoryOrder(low), InMemoryOrder(high)};
    std::memcpy(out, words, sizeof words);
  }

 private:
  static constexpr std::uint64_t Mask(std::size_t count) noexcept {
    return count >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << 8 * count) - 1;
  }
  // The word without its first `count` characters.
  static constexpr std::uint64_t Without(std::uint64_t word, std::size_t count) noexcept {
    return count >= 8 ? 0 : word >> 8 * count;
  }
  static std::uint64_t InMemoryOrder(std::uint64_t word) noexcept {
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
  }
};

// How a dictionary changes the characters of its keys: ASCII letters to one case, or
// nothing. Bytes over 0x7F always stay. The result is the signed byte that orders nodes,
// also on a machine whose `char` is unsigned. A key ends at the first character that
// becomes zero: its NUL, or one of `ends`.
class KeyFolding {
 public:
  enum class Letters { Kept, ToLower, ToUpper };

  constexpr explicit KeyFolding(Letters letters, std::string_view ends = {}) : m_folded{} {
    for (unsigned i = 0; i < m_folded.size(); ++i) {
      const char c = static_cast<char>(static_cast<unsigned char>(i));
      const bool isLower = c >= 'a' && c <= 'z';
      const char folded = letters == Letters::ToLower              ? FoldAscii(c)
                          : letters == Letters::ToUpper && isLower ? static_cast<char>(c ^ 0x20)
                                                                   : c;
      m_folded[i] = static_cast<signed char>(folded);
    }
    for (const char end : ends) m_folded[static_cast<unsigned char>(end)] = 0;
  }

  // The folding of a dictionary with these settings; `foldToUpper` counts only if case
  // does not matter. Lives as long as the process.
  static const KeyFolding& For(bool caseSensitive, bool foldToUpper) noexcept;

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

  // True for the folding that FoldedKey uses.
  bool IsToLower() const noexcept;

  constexpr signed char Fold(char c) const noexcept {
    return m_folded[static_cast<unsigned char>(c)];
  }

 private:
  std::array<signed char, 256> m_folded;
};

namespace Foldings {
inline constinit const KeyFolding kKept(KeyFolding::Letters::Kept);
inline constinit const KeyFolding kToLower(KeyFolding::Letters::ToLower);
inline constinit const KeyFolding kToUpper(KeyFolding::Letters::ToUpper);
}  // namespace Foldings

inline const KeyFolding& KeyFolding::For(bool caseSensitive, bool foldToUpper) noexcept {
  return caseSensitive ? Foldings::kKept : foldToUpper ? Foldings::kToUpper : Foldings::kToLower;
}

inline bool KeyFolding::IsToLower() const noexcept {
  return this == &Foldings::kToLower;
}

// A key that is looked up again and again, with its letters folded to lower case
// beforehand (by the compiler, if it is a constant). The text belongs to the caller and
// must live as long as this.
class FoldedKey {
 public:
  // Not explicit: any text is a key. Null is the empty key.
  constexpr FoldedKey(const char* text) noexcept : m_text(text) {
    if (text == nullptr) return;
    while (m_first.length != KeyPiece::kMaxLength && text[m_first.length] != '\0') {
      m_first.Add(static_cast<signed char>(FoldAscii(text[m_first.length])));
    }
  }

  [[nodiscard]] constexpr const char* Text() const noexcept { return m_text; }
  [[nodiscard]] constexpr const KeyPiece& First() const noexcept { return m_first; }

 private:
  const char* m_text;
  KeyPiece m_first;
};

}  // namespace Vask
