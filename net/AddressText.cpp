#include "net/AddressText.h"

#include <algorithm>
#include <cstring>

#include "json/Ascii.h"

namespace Vask {

namespace {

constexpr std::uint32_t kHighestPort = 65535;
constexpr std::uint32_t kHighestPart = 255;
constexpr int kParts = 4;

// Takes the digits off the front of `text` and answers their value, or one
// more than `highest` when that is passed, however long the number.
std::uint32_t TakeNumber(std::string_view& text, std::uint32_t highest) {
  std::uint32_t value = 0;
  while (!text.empty() && IsDigit(text.front())) {
    const auto digit = static_cast<std::uint32_t>(text.front() - '0');
    value = std::min(value * 10 + digit, highest + 1);
    text.remove_prefix(1);
  }
  return value;
}

// 0 when the host is no dotted quad.
std::uint32_t ParseQuad(std::string_view host) {
  std::uint8_t parts[kParts] = {};
  for (int i = 0; i < kParts; ++i) {
    if (i > 0) {
      if (host.empty() || host.front() != '.') return 0;
      host.remove_prefix(1);
    }
    if (host.empty() || !IsDigit(host.front())) return 0;
    const std::uint32_t part = TakeNumber(host, kHighestPart);
    if (part > kHighestPart) return 0;
    parts[i] = static_cast<std::uint8_t>(part);
  }
  return host.empty() ? QuadNetworkOrder(parts) : 0;
}

}  // namespace

std::optional<AddressText> ParseAddressText(std::string_view text, std::uint32_t defaultPort) {
  std::uint32_t port = defaultPort;
  const std::size_t colon = text.find(':');
  const std::string_view host = text.substr(0, colon);
  if (colon != std::string_view::npos) {
    std::string_view digits = text.substr(colon + 1);
    port = TakeNumber(digits, kHighestPort);
  }
  if (port == 0 || port > kHighestPort) return std::nullopt;
  AddressText parsed;
  parsed.port = static_cast<std::uint16_t>(port);
  parsed.quadNetworkOrder = ParseQuad(host);
  if (parsed.quadNetworkOrder != 0) return parsed;
  if (host.empty() || host.size() > kLongestHostName) return std::nullopt;
  host.copy(parsed.host, host.size());
  return parsed;
}

std::uint32_t QuadNetworkOrder(const std::uint8_t (&parts)[4]) {
  std::uint32_t address = 0;
  std::memcpy(&address, parts, sizeof address);
  return address;
}

std::uint16_t PortNetworkOrder(std::uint16_t port) {
  const std::uint8_t bytes[] = {static_cast<std::uint8_t>(port >> 8),
                                static_cast<std::uint8_t>(port & 0xFF)};
  std::uint16_t networkOrder = 0;
  std::memcpy(&networkOrder, bytes, sizeof networkOrder);
  return networkOrder;
}

}  // namespace Vask
