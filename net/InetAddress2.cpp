#include "net/InetAddress2.h"

#include <cstring>

#include "net/AddressText.h"

namespace Vask {

bool InetAddress2::Set(const char* hostAndPort) {
  const std::optional<AddressText> text = ParseAddressText(hostAndPort, kDefaultPort);
  if (!text) return false;
  std::uint32_t address = text->quadNetworkOrder;
  if (address == 0 && !LookUp(text->host, address)) return false;
  m_address.portNetworkOrder = PortNetworkOrder(text->port);
  m_address.addressNetworkOrder = address;
  return true;
}

bool InetAddress2::LookUp(const char* host, std::uint32_t& addressNetworkOrder) {
  if (std::strcmp(host, "localhost") != 0) return m_sockets->LookUp(host, addressNetworkOrder);
  addressNetworkOrder = QuadNetworkOrder({127, 0, 0, 1});
  return true;
}

}  // namespace Vask
