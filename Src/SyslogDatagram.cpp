#include "Src/SyslogDatagram.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Vask {

namespace {

unsigned Priority(std::string_view prefix) noexcept {
  constexpr unsigned kLocalUse0 = 16;
  unsigned severity = 3;
  if (prefix.starts_with('W')) severity = 4;
  if (prefix.starts_with('I')) severity = 6;
  return kLocalUse0 * 8 + severity;
}

}  // namespace

std::size_t BuildSyslogDatagram(std::string_view prefix, std::string_view text,
                                char (&datagram)[kSyslogCapacity]) noexcept {
  auto length =
      static_cast<std::size_t>(std::snprintf(datagram, sizeof datagram, "<%u>", Priority(prefix)));
  for (const std::string_view part : {prefix, text}) {
    const std::size_t taken = std::min(part.size(), sizeof datagram - length);
    std::memcpy(datagram + length, part.data(), taken);
    length += taken;
  }
  return length;
}

}  // namespace Vask
