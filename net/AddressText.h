#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Vask {

// Longest host name that an address text may hold, in characters.
inline constexpr std::size_t kLongestHostName = 79;

// The parts of "host" or "host:port", without any look-up.
struct AddressText {
  std::uint16_t port = 0;                // host order, never 0
  std::uint32_t quadNetworkOrder = 0;    // the dotted quad; 0: look `host` up instead
  char host[kLongestHostName + 1] = {};  // NUL-terminated; empty with a quad
};

// Splits an address text at its first colon. The decimal number behind the colon,
// read as atoi reads it, is the port; without a colon `defaultPort` is. A port of
// 0, below 0 or over 65,535 fails. A host of exactly three dots and, around them,
// decimal numbers of at most 255 is a dotted quad, unless all four are 0; an empty
// number counts as 0. Any other host is a name and fails if it is empty or longer
// than kLongestHostName. No value on failure.
[[nodiscard]] std::optional<AddressText> ParseAddressText(std::string_view text,
                                                          std::uint32_t defaultPort);

// Four numbers as they stand in a text, in network order.
[[nodiscard]] std::uint32_t QuadNetworkOrder(const std::uint8_t (&parts)[4]);

// A port as an address holds it.
[[nodiscard]] std::uint16_t PortNetworkOrder(std::uint16_t port);

}  // namespace Vask
