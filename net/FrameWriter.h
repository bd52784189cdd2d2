#pragma once

#include <string>
#include <string_view>

namespace Vask {

// Appends a body as the link carries it: its length in decimal, '#', the body.
// An empty body gives "0#", which a receiver refuses. Bodies are shorter than
// 2^32 bytes.
void AppendFrame(std::string& out, std::string_view body);

}  // namespace Vask
