#include "net/InetAddress.h"

#include <algorithm>
#include <cstring>

#include "json/Ascii.h"

namespace Vask {

namespace {

constexpr std::uint32_t kHighestPort = 65535;
constexpr std::uint32_t kHighestPart = 255;
constexpr int kParts = 4;

// The longest name of a machine (256 characters) and its terminating zero.
constexpr std::size_t kHostNameCapacity = 257;

constexpr char kLocalhost[] = "localhost";

// Takes the digits off the front of `text` and returns their value. Returns
// `highest` + 1 if the value is over `highest`, however long the number is.
std::uint32_t TakeNumber(std::string_view& text, std::uint32_t highest) {
  std::uint32_t value = 0;
  while (!text.empty() && IsDigit(text.front())) {
    const auto digit = static_cast<std::uint32_t>(text.front() - '0');
    value = std::min(value * 10 + digit, highest + 1);
    text.remove_prefix(1);
  }
  return value;
}

// Reads as atoi does: white space, a sign, digits, and then anything. Returns 0 for a
// negative number and for one over kHighestPort.
std::uint16_t ParsePort(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('-')) return 0;
  if (text.starts_with('+')) text.remove_prefix(1);
  const std::uint32_t port = TakeNumber(text, kHighestPort);
  return port <= kHighestPort ? static_cast<std::uint16_t>(port) : std::uint16_t{0};
}

// Returns 0 if the host is no dotted quad.
std::uint32_t ParseQuad(std::string_view host) {
  std::uint8_t parts[kParts] = {};
  for (int i = 0; i < kParts; ++i) {
    if (i > 0) {
      if (!host.starts_with('.')) return 0;
      host.remove_prefix(1);
    }
    const std::uint32_t part = TakeNumber(host, kHighestPart);
    if (part > kHighestPart) return 0;
    parts[i] = static_cast<std::uint8_t>(part);
  }
  return host.empty() ? QuadNetworkOrder(parts) : 0;
}

bool LookUpTcpPeer(Platform::Sockets& sockets, const char* host,
                   std::uint32_t& addressNetworkOrder) {
  if (std::strcmp(host, kLocalhost) != 0) return sockets.LookUp(host, addressNetworkOrder);
  char ownName[kHostNameCapacity];
  return sockets.HostName(ownName, sizeof ownName) && sockets.LookUp(ownName, addressNetworkOrder);
}

bool LookUpSyslogServer(Platform::Sockets& sockets, const char* host,
                        std::uint32_t& addressNetworkOrder) {
  if (std::strcmp(host, kLocalhost) != 0) return sockets.LookUp(host, addressNetworkOrder);
  addressNetworkOrder = QuadNetworkOrder({127, 0, 0, 1});
  return true;
}

// What the two classes share. They differ in how they look a name up.
using LookUp = bool (*)(Platform::Sockets& sockets, const char* host,
                        std::uint32_t& addressNetworkOrder);

bool Resolve(Platform::Sockets& sockets, const char* hostAndPort, std::uint32_t defaultPort,
             LookUp lookUp, Platform::SocketAddress& resolved) {
  const std::optional<AddressText> text = ParseAddressText(hostAndPort, defaultPort);
  if (!text) return false;
  std::uint32_t address = text->quadNetworkOrder;
  if (address == 0 && !lookUp(sockets, text->host, address)) return false;
  resolved.portNetworkOrder = PortNetworkOrder(text->port);
  resolved.addressNetworkOrder = address;
  return true;
}

}  // namespace

std::optional<AddressText> ParseAddressText(std::string_view text, std::uint32_t defaultPort) {
  std::uint32_t port = defaultPort;
  const std::size_t colon = text.find(':');
  const std::string_view host = text.substr(0, colon);
  if (colon != std::string_view::npos) port = ParsePort(text.substr(colon + 1));
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

std::int32_t InetAddress::Set(const char* host, std::uint32_t port) {
  return Resolve(*m_sockets, host, port, &LookUpTcpPeer, m_address) ? kOk : kFailed;
}

bool InetAddress2::Set(const char* hostAndPort) {
  return Resolve(*m_sockets, hostAndPort, kDefaultPort, &LookUpSyslogServer, m_address);
}

}  // namespace Vask
