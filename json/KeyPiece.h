#pragma once

#include <cstddef>
#include <cstring>

namespace Vask {

// The next characters of a key, folded as the dictionary folds that it is for. A
// key that is longer than one piece comes in several; its last is shorter than
// the others, and may be empty. Characters are signed, whatever `char` is on this
// machine, for that is their order in a dictionary.
struct KeyPiece {
  static constexpr std::size_t kMaxLength = 16;

  signed char characters[kMaxLength];  // zeros behind the last
  std::size_t length;

  [[nodiscard]] constexpr KeyPiece CutTo(std::size_t newLength) const noexcept {
    KeyPiece piece{{}, newLength};
    for (std::size_t i = 0; i < newLength; ++i) piece.characters[i] = characters[i];
    return piece;
  }
};

}  // namespace Vask
