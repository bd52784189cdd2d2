#pragma once

#include <cstdint>
#include <string>

#include "json/Json.h"

namespace Vask {

// What a parse reports besides the value.
struct ParseResult {
  std::string errorMessage;  // empty after a success and after one failure, see Parse
  // The place where the parse stopped, both from 1: behind the last character consumed,
  // or at the failure. Columns count bytes; of a one-character escape such as \n only
  // the backslash counts.
  std::uint32_t line = 1;
  std::uint32_t column = 1;
};

// Reads one JSON value from the front of a NUL-terminated text. Returns it with one
// reference that the caller owns. At the first fault it releases everything that it has
// built and returns null. Fills `result` in both cases.
//
// What it accepts beyond JSON: any text after the first value or literal, leading zeros,
// numbers without digits after '.' or 'e', control characters in strings, unknown escapes
// (the backslash is dropped), and vertical tab and form feed as white space. \u0000 adds
// no character, and surrogates are not combined. If an object repeats a key, in any
// letter case, the later value replaces the earlier one. A value under an empty key is
// read and released at once.
//
// One fault has an empty message: a character other than ',' or ']' after an element of
// an array.
//
// Any thread may call this. Texts may be nested to any depth, because the use of the
// stack does not grow with it. If memory runs out, this throws std::bad_alloc and has
// released everything built so far.
[[nodiscard]] Json* Parse(ParseResult& result, const char* text);

// The same, but with the values in `memory`, which this rewinds first. No other thread
// may use `memory` meanwhile. The values may outlive it.
[[nodiscard]] Json* Parse(ParseResult& result, const char* text, ValueMemory& memory);

}  // namespace Vask
