#include "check/Access.h"

#include <algorithm>

namespace Check {

bool HasRights(const AccessFacts& access, const std::vector<std::string>& sids,
               std::uint32_t rights) {
  if (access.open) return true;
  std::uint32_t wanted = rights;
  for (const AccessEntry& entry : access.entries) {
    if (std::find(sids.begin(), sids.end(), entry.sid) == sids.end()) continue;
    if (!entry.allows && (entry.rights & wanted) != 0) return false;
    if (entry.allows) wanted &= ~entry.rights;
    if (wanted == 0) return true;
  }
  return wanted == 0;
}

}  // namespace Check
