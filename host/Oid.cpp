#include "host/Oid.h"

#include <algorithm>

namespace Host {

std::string ToText(const Oid& oid) {
  std::string text;
  for (const std::uint32_t id : oid) {
    if (!text.empty()) text += '.';
    text += std::to_string(id);
  }
  return text;
}

bool IsUnder(const Oid& oid, const Oid& root) {
  return oid.size() >= root.size() && std::equal(root.begin(), root.end(), oid.begin());
}

}  // namespace Host
