#pragma once

#include <string>

namespace Host {

// Between the host's UTF-8 and Windows' UTF-16, for names and paths. What is no
// text in the one becomes a replacement character in the other.
[[nodiscard]] std::u16string ToWide(const std::string& text);
[[nodiscard]] std::string FromWide(const std::u16string& text);

}  // namespace Host
