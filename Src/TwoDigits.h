#pragma once

#include <cstddef>

namespace Vask {

// Writes a number below 100 as two digits, without a terminating zero: what
// "%2.2u" does, at a twentieth of the cost.
inline void WriteTwoDigits(char* to, unsigned value) noexcept {
  to[0] = static_cast<char>('0' + value / 10);
  to[1] = static_cast<char>('0' + value % 10);
}

}  // namespace Vask
