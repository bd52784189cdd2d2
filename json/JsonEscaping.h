#pragma once

#include <string>
#include <string_view>

namespace Vask {

// Appends `text`, up to its first NUL, as it stands between the quotes of a
// JSON string:
//  - quote, backslash, slash, backspace, tab, line feed, form feed and carriage
//    return as their two-character escapes,
//  - the other characters from 0x20 to 0x7F unchanged,
//  - UTF-8 sequences of two and three bytes as \u and four lower-case
//    hexadecimal digits; of the bytes after the first only the low six bits are
//    looked at; a sequence that the text's end cuts loses its first byte,
//  - everything else not at all: other control characters, the first bytes of
//    longer sequences, stray continuation bytes.
void AppendEscaped(std::string& out, std::string_view text);

}  // namespace Vask
