#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Simulator {

// Helpers for the lines that people write and read. They follow ASCII rules in
// every locale.

[[nodiscard]] bool EqualsIgnoringCase(std::string_view a, std::string_view b);
[[nodiscard]] bool IsBlank(char c);
// Removes blanks at both ends; a carriage return is a blank.
[[nodiscard]] std::string_view Trimmed(std::string_view text);
// Removes the first word and the blanks around it from `rest` and returns the
// word.
[[nodiscard]] std::string_view TakeWord(std::string_view& rest);

// Reads the whole text as a decimal number, which may have a minus sign. False if
// it is anything else or does not fit.
[[nodiscard]] bool ParseWhole(std::string_view text, std::int32_t& number);
// Does the same for a number that cannot be negative.
[[nodiscard]] bool ParseCount(std::string_view text, std::uint32_t& number);

// Returns the text as a JSON string, with its quotes. Bytes over 0x7F stay
// unchanged.
[[nodiscard]] std::string Quoted(std::string_view text);

// Whether the text is exactly one JSON value for the link's own parser.
[[nodiscard]] bool IsOneJsonValue(const std::string& text);

// Replaces \n \r \t \0 \\ and \xHH with their bytes. On failure `error` is a
// phrase with the reason.
[[nodiscard]] bool Unescape(std::string_view text, std::string& bytes, std::string& error);
// Returns the bytes as printable ASCII, with \xHH for the others.
[[nodiscard]] std::string Escaped(std::string_view bytes);

}  // namespace Simulator
