#include "check/Access.h"

#include <algorithm>

#include "check/VerdictParts.h"
#include "json/Ascii.h"

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

std::vector<std::string> SidsOf(const std::string& account) {
  const std::string name = account.substr(account.find('\\') + 1);  // npos + 1 is 0
  // Everyone, and authenticated users.
  std::vector<std::string> sids = {"S-1-1-0", "S-1-5-11"};
  const auto add = [&](std::initializer_list<const char*> more) {
    sids.insert(sids.end(), more.begin(), more.end());
    return sids;
  };
  // Administrators; services and users.
  if (Vask::EqualsIgnoringCase(name, "LocalSystem") || Vask::EqualsIgnoringCase(name, "SYSTEM")) {
    return add({"S-1-5-18", "S-1-5-32-544"});
  }
  if (Vask::EqualsIgnoringCase(name, "LocalService"))
    return add({"S-1-5-19", "S-1-5-6", "S-1-5-32-545"});
  if (Vask::EqualsIgnoringCase(name, "NetworkService"))
    return add({"S-1-5-20", "S-1-5-6", "S-1-5-32-545"});
  return {};
}

}  // namespace Check
