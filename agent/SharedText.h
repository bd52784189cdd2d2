#pragma once

#include <cstddef>
#include <cstdint>

namespace Agent {

// A text cell that one thread writes while others read, without a lock: a
// reader may meet a mixture of the old and the new text. Every byte is read and
// written as a relaxed atomic, and no byte outside the cell is ever touched, so
// a mixture is all that can happen. A text that fills the cell has no zero
// behind it.

// Writes `length` bytes of `text` into the cell.
void WriteShared(char* cell, const char* text, std::size_t length) noexcept;

// Length of the cell's present text: the bytes before its first zero, or
// `capacity` where there is none.
[[nodiscard]] std::uint32_t MeasureShared(char* cell, std::uint32_t capacity) noexcept;

// Reads `length` bytes of the cell into `text`.
void ReadShared(char* cell, char* text, std::size_t length) noexcept;

}  // namespace Agent
