#include "net/InetAddress.h"

#include <cstddef>
#include <cstring>

#include "net/AddressText.h"

namespace Vask {

namespace {

// Room for the longest name a machine can have (256 characters) and its end.
constexpr std::size_t kHostNameCapacity = 257;

}  // namespace

std::int32_t InetAddress::Set(const char* host, std::uint32_t port) {
  const std::optional<AddressText> text = ParseAddressText(host, port);
  if (!text) return kFailed;
  std::uint32_t address = text->quadNetworkOrder;
  if (address == 0 && !LookUp(text->host, address)) return kFailed;
  m_address.portNetworkOrder = PortNetworkOrder(text->port);
  m_address.addressNetworkOrder = address;
  return kOk;
}

bool InetAddress::LookUp(const char* host, std::uint32_t& addressNetworkOrder) {
  if (std::strcmp(host, "localhost") != 0) return m_sockets->LookUp(host, addressNetworkOrder);
  char ownName[kHostNameCapacity];
  return m_sockets->HostName(ownName, sizeof ownName) &&
         m_sockets->LookUp(ownName, addressNetworkOrder);
}

}  // namespace Vask
