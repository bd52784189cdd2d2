#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Simulator {

// Small helpers for the lines that people write and read. ASCII rules, whatever
// the locale.

[[nodiscard]] bool EqualsIgnoringCase(std::string_view a, std::string_view b);
[[nodiscard]] bool IsBlank(char c);
// Without blanks at both ends; a line's carriage return counts as one.
[[nodiscard]] std::string_view Trimmed(std::string_view text);
// Takes the first word off `rest`, and the blanks around it.
[[nodiscard]] std::string_view TakeWord(std::string_view& rest);

// All of the text as a decimal number, with a minus sign or none; false when it
// is something else or does not fit.
[[nodiscard]] bool ParseWhole(std::string_view text, std::int32_t& number);
// The same for what cannot be negative.
[[nodiscard]] bool ParseCount(std::string_view text, std::uint32_t& number);

// The text as a JSON string, quotes included. Bytes over 0x7F stay as they are.
[[nodiscard]] std::string Quoted(std::string_view text);

// Whether the text is one JSON value and nothing else, as the link's own parser
// sees it.
[[nodiscard]] bool IsOneJsonValue(const std::string& text);

// Turns \n \r \t \0 \\ and \xHH into the bytes that they stand for. On failure
// `error` says why, as a phrase.
[[nodiscard]] bool Unescape(std::string_view text, std::string& bytes, std::string& error);
// The bytes in a line of their own: what is not printable ASCII as \xHH.
[[nodiscard]] std::string Escaped(std::string_view bytes);

}  // namespace Simulator
