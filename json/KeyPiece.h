#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace Vask {

// The next characters of a key, folded as the dictionary folds that it is for. A
// key that is longer than one piece comes in several; its last is shorter than
// the others, and may be empty.
struct KeyPiece {
  static constexpr std::size_t kMaxLength = 16;

  // Eight characters each, the first in the lowest byte; zeros behind the last. In
  // words, so that they are compared and moved in registers.
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  std::size_t length = 0;

  // By these siblings are ordered: signed, whatever `char` is on this machine.
  [[nodiscard]] constexpr signed char First() const noexcept {
    return static_cast<signed char>(low);
  }

  // One more, while there are fewer than kMaxLength.
  constexpr void Add(signed char character) noexcept {
    const auto bits = std::uint64_t{static_cast<unsigned char>(character)} << 8 * (length % 8);
    (length < 8 ? low : high) |= bits;
    ++length;
  }

  // The first characters, at most all, and those behind them.
  [[nodiscard]] constexpr KeyPiece CutTo(std::size_t count) const noexcept {
    if (count <= 8) return {low & Mask(count), 0, count};
    return {low, high & Mask(count - 8), count};
  }
  [[nodiscard]] constexpr KeyPiece Behind(std::size_t count) const noexcept {
    if (count == 0) return *this;
    if (count >= 8) return {count == 16 ? 0 : high >> 8 * (count - 8), 0, length - count};
    return {low >> 8 * count | high << 8 * (8 - count), high >> 8 * count, length - count};
  }

  // How many characters of both are the same, from the first on.
  [[nodiscard]] constexpr std::size_t CommonLength(const KeyPiece& other) const noexcept {
    if (low != other.low) return static_cast<std::size_t>(std::countr_zero(low ^ other.low)) / 8;
    if (high == other.high) return length;
    return 8 + static_cast<std::size_t>(std::countr_zero(high ^ other.high)) / 8;
  }

 private:
  static constexpr std::uint64_t Mask(std::size_t count) noexcept {
    return count == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << 8 * count) - 1;
  }
};

}  // namespace Vask
