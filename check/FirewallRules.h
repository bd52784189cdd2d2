#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Check {

struct FirewallProfile {
  std::string name;  // Domain, Private or Public
  bool on = true;
  bool allowsByDefault = false;
  bool mergesLocalRules = true;  // false if a policy says that only its own rules hold
  std::optional<bool> active;    // whether a network of this machine uses it
};

struct FirewallFacts {
  std::vector<std::string> rules;  // of this machine, in the form of the registry
  std::vector<std::string> policyRules;
  std::vector<FirewallProfile> profiles;
  std::string whyUnknown;
};

// How the firewall treats requests to the SNMP service (UDP port 161, inbound) on networks of one
// profile.
enum class Passage {
  kOpen,
  kLimited,      // open for some remote addresses only
  kLocalSubnet,  // open for the local subnet only
  kClosed,       // no rule allows them
  kBlocked,      // a rule blocks them
};

// Reads the rules that apply to the profile. They have the form of the registry, such as
// "v2.30|Action=Allow|Active=TRUE|Dir=In|Protocol=17|LPort=161|Svc=SNMP|RA4=LocalSubnet|". A field
// that is missing or empty means "any". `limits` gets the remote addresses if the result is
// kLimited or kLocalSubnet.
[[nodiscard]] Passage PassageOf(const FirewallFacts& firewall, const FirewallProfile& profile,
                                std::string& limits);

}  // namespace Check
