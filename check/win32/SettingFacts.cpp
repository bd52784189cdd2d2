// The registry's part: the service's lists, and the firewall.

#include "check/win32/System.h"

#include <netfw.h>
#include <objbase.h>

#include "check/win32/Gather.h"

namespace Check {
namespace {

constexpr char kServiceParameters[] = R"(SYSTEM\CurrentControlSet\Services\SNMP\Parameters\)";
constexpr char kPolicyParameters[] = R"(SOFTWARE\Policies\SNMP\Parameters\)";
constexpr char kFirewall[] =
    R"(SYSTEM\CurrentControlSet\Services\SharedAccess\Parameters\FirewallPolicy\)";
constexpr char kFirewallPolicy[] = R"(SOFTWARE\Policies\Microsoft\WindowsFirewall\)";

// Reads the values of the key. Returns false if there is no such key. Returns false also if the
// key cannot be read; `facts` then has the reason.
bool ReadValues(const MachineKey& key, KeyFacts& facts) {
  if (!key.IsOpen()) {
    const auto error = static_cast<DWORD>(key.Error());
    if (IsMissing(error)) return false;
    facts.state = KeyFacts::State::kUnreadable;
    facts.whyUnreadable = ErrorText(error);
    return false;
  }
  facts.state = KeyFacts::State::kRead;
  facts.values = key.Values();
  return true;
}

KeyFacts ReadList(const std::string& path) {
  KeyFacts facts;
  static_cast<void>(ReadValues(MachineKey(path), facts));
  return facts;
}

// The destinations are the values of one key for each community.
KeyFacts ReadDestinations(const std::string& path) {
  KeyFacts facts;
  const MachineKey top(path);
  if (!ReadValues(top, facts)) return facts;
  facts.values.clear();
  const std::string folder = path + '\\';
  for (const std::string& community : top.SubKeys()) {
    KeyFacts below;
    if (!ReadValues(MachineKey(folder + community), below) &&
        below.state == KeyFacts::State::kUnreadable) {
      return below;
    }
    for (SettingValue& value : below.values) {
      value.name = community;
      facts.values.push_back(value);
    }
  }
  return facts;
}

// Returns the profiles of the connected networks, as a set of bits. Empty if Windows does not
// report them.
std::optional<long> ActiveProfiles() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return {};
  std::optional<long> active;
  INetFwPolicy2* policy = nullptr;
  if (SUCCEEDED(CoCreateInstance(__uuidof(NetFwPolicy2), nullptr, CLSCTX_INPROC_SERVER,
                                 __uuidof(INetFwPolicy2), reinterpret_cast<void**>(&policy)))) {
    long types = 0;
    if (SUCCEEDED(policy->get_CurrentProfileTypes(&types))) active = types;
    policy->Release();
  }
  CoUninitialize();
  return active;
}

struct Profile {
  const char* name;
  const char* key;
  const char* policyKey;
  long bit;
};
// A policy may have either name of the private profile: "StandardProfile" is the older one.
constexpr Profile kProfiles[] = {
    {"Domain", "DomainProfile", "DomainProfile", NET_FW_PROFILE2_DOMAIN},
    {"Private", "StandardProfile", "PrivateProfile", NET_FW_PROFILE2_PRIVATE},
    {"Public", "PublicProfile", "PublicProfile", NET_FW_PROFILE2_PUBLIC},
};

// A setting of a profile: the policy's if there is one.
std::uint32_t ProfileSetting(const Profile& profile, const char* name, std::uint32_t usual) {
  for (const std::string& path :
       {std::string(kFirewallPolicy) + profile.policyKey,
        std::string(kFirewallPolicy) + profile.key, std::string(kFirewall) + profile.key}) {
    const MachineKey key(path);
    if (!key.IsOpen()) continue;
    if (const auto number = key.Number(name)) return *number;
  }
  return usual;
}

}  // namespace

void GatherSettings(Facts& facts) {
  const auto read = [](const char* name, auto reader) {
    return SettingFacts{reader(std::string(kPolicyParameters) + name),
                        reader(std::string(kServiceParameters) + name)};
  };
  facts.communities = read("ValidCommunities", ReadList);
  facts.managers = read("PermittedManagers", ReadList);
  facts.trapDestinations = read("TrapConfiguration", ReadDestinations);
}

void GatherFirewall(Facts& facts) {
  FirewallFacts& firewall = facts.firewall;
  for (const char* place : {kFirewall, kFirewallPolicy}) {
    const MachineKey key(std::string(place) + "FirewallRules");
    if (!key.IsOpen()) {
      // Only few machines have rules of a policy.
      if (place == kFirewall) {
        firewall.whyUnknown = ErrorText(static_cast<DWORD>(key.Error()));
        return;
      }
      continue;
    }
    auto& rules = place == kFirewall ? firewall.rules : firewall.policyRules;
    for (const SettingValue& rule : key.Values()) rules.push_back(rule.text);
  }
  const std::optional<long> active = ActiveProfiles();
  for (const Profile& profile : kProfiles) {
    FirewallProfile found;
    found.name = profile.name;
    found.on = ProfileSetting(profile, "EnableFirewall", 1) != 0;
    found.allowsByDefault = ProfileSetting(profile, "DefaultInboundAction", 1) == 0;
    found.mergesLocalRules = ProfileSetting(profile, "AllowLocalPolicyMerge", 1) != 0;
    if (active) found.active = (*active & profile.bit) != 0;
    firewall.profiles.push_back(found);
  }
}

}  // namespace Check
