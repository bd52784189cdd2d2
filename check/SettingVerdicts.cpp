// The steps that are settings of Windows: the service's lists and the firewall.

#include "check/FirewallRules.h"
#include "check/VerdictParts.h"
#include "json/Ascii.h"

namespace Check {
namespace {

constexpr std::uint32_t kReadOnly = 4;  // NONE 1, NOTIFY 2, READ ONLY 4, READ WRITE 8, CREATE 16

constexpr char kPolicySuffix[] = " (set by a policy, which replaces the service's own list)";

std::string PolicyNote(const SettingFacts& setting) {
  return setting.PolicyHolds() ? kPolicySuffix : "";
}

// The place where an administrator changes the list.
std::string Place(const SettingFacts& setting, const char* page) {
  if (setting.PolicyHolds()) {
    return "in the group policy (Computer Configuration, Administrative Templates, Network, SNMP)";
  }
  return std::string("in services.msc, SNMP Service, ") + page;
}

Verdict Unreadable(StepId step, const char* what, const SettingFacts& setting) {
  return Skipped(step, std::string(what) + " cannot be read" + PolicyNote(setting) + ": " +
                           setting.InForce().whyUnreadable + '.');
}

// The lists matter only if the service is installed.
bool IsMissing(const ServiceFacts& service) {
  return service.state == ServiceFacts::State::kMissing;
}
constexpr char kNoService[] = "The service is not installed.";

// The communities that may read. A policy lists only names, and all of them may read.
std::vector<std::string> ReadableCommunities(const KeyFacts& key) {
  std::vector<std::string> communities;
  for (const SettingValue& value : key.values) {
    if (value.isNumber && value.number >= kReadOnly) communities.push_back(value.name);
    if (!value.isNumber && !value.text.empty()) communities.push_back(value.text);
  }
  return communities;
}

// The state of one profile, in words.
std::string StateOf(const FirewallProfile& profile, Passage passage, const std::string& limits) {
  if (!profile.on) return "open, the firewall is off";
  switch (passage) {
    case Passage::kOpen:
      return "open";
    case Passage::kLimited:
    case Passage::kLocalSubnet:
      return "open for " + limits + (passage == Passage::kLocalSubnet ? " only" : "");
    case Passage::kClosed:
      return "closed, no rule opens it";
    case Passage::kBlocked:
      break;
  }
  return "closed by a rule";
}

constexpr char kEnableRule[] =
    "run as an administrator: netsh advfirewall firewall set rule group=\"SNMP Service\" new "
    "enable=yes";
// A rule of this machine does not help then.
constexpr char kChangePolicy[] =
    "add a rule for UDP port 161 to the group policy. It ignores the rules of this machine.";
constexpr char kWidenRule[] =
    "widen the rule in wf.msc, or add one as an administrator: netsh advfirewall firewall add rule "
    "name=\"SNMP from the manager\" dir=in action=allow protocol=UDP localport=161 remoteip="
    "ADDRESS, with the address of your manager";

}  // namespace

std::optional<std::string> ReadableCommunity(const SettingFacts& communities) {
  const auto readable = ReadableCommunities(communities.InForce());
  return readable.empty() ? std::nullopt : std::optional(readable.front());
}

Verdict JudgeCommunities(const Facts& facts) {
  constexpr StepId kStep = StepId::kCommunities;
  if (IsMissing(facts.service)) return Skipped(kStep, kNoService);
  const SettingFacts& setting = facts.communities;
  const KeyFacts& key = setting.InForce();
  if (key.state == KeyFacts::State::kUnreadable) {
    return Unreadable(kStep, "The communities", setting);
  }
  const auto readable = ReadableCommunities(key);
  const std::string add =
      "add a community with the rights READ ONLY " + Place(setting, "Security") + '.';
  if (key.values.empty()) {
    return Failed(kStep, "The service accepts no community" + PolicyNote(setting) + '.', add);
  }
  if (readable.empty()) {
    return Failed(kStep, "No community has the right to read" + PolicyNote(setting) + '.', add);
  }
  // A community is a password: the report gives the number only.
  std::string text = std::to_string(readable.size()) + " of " + std::to_string(key.values.size()) +
                     " communities may read" + PolicyNote(setting) + '.';
  for (const std::string& community : readable) {
    if (Vask::EqualsIgnoringCase(community, "public")) {
      text += " One of them is \"public\", which everybody knows.";
    }
  }
  return Ok(kStep, text);
}

Verdict JudgeManagers(const Facts& facts, const Options& options) {
  constexpr StepId kStep = StepId::kManagers;
  if (IsMissing(facts.service)) return Skipped(kStep, kNoService);
  const SettingFacts& setting = facts.managers;
  const KeyFacts& key = setting.InForce();
  if (key.state == KeyFacts::State::kUnreadable) {
    return Unreadable(kStep, "The permitted managers", setting);
  }
  const auto managers = TextsOf(key);
  const std::string note = PolicyNote(setting);
  if (managers.empty()) {
    return Ok(kStep, "The service accepts requests from every host" + note + '.');
  }
  bool found = false;
  for (const std::string& manager : managers) {
    found = found || (options.manager.empty() ? !IsThisMachine(manager)
                                              : Vask::EqualsIgnoringCase(manager, options.manager));
  }
  const std::string list = "The service accepts requests from " + Joined(managers) + note;
  if (found) return Ok(kStep, list + '.');
  if (!options.manager.empty()) {
    return Failed(kStep, list + ", not from " + options.manager + '.',
                  "add " + options.manager + ' ' + Place(setting, "Security") + '.');
  }
  return Failed(kStep, list + ", which is this machine only.",
                "add your manager " + Place(setting, "Security") + '.');
}

Verdict JudgeTraps(const Facts& facts, const Options& options) {
  constexpr StepId kStep = StepId::kTraps;
  if (options.noTraps) return Skipped(kStep, "Not checked, because of --no-traps.");
  if (IsMissing(facts.service)) return Skipped(kStep, kNoService);
  const SettingFacts& setting = facts.trapDestinations;
  if (setting.InForce().state == KeyFacts::State::kUnreadable) {
    return Unreadable(kStep, "The trap destinations", setting);
  }
  const auto destinations = TextsOf(setting.InForce());
  if (destinations.empty()) {
    return Failed(
        kStep,
        "There is no trap destination" + PolicyNote(setting) + ": no trap leaves this machine.",
        "add the address of your manager " + Place(setting, "Traps") +
            ". If this server sends no traps, use --no-traps.");
  }
  return Ok(kStep, "Traps go to " + Joined(destinations) + PolicyNote(setting) + '.');
}

Verdict JudgeFirewall(const Facts& facts) {
  constexpr StepId kStep = StepId::kFirewall;
  const FirewallFacts& firewall = facts.firewall;
  if (!firewall.whyUnknown.empty()) {
    return Skipped(kStep, "The firewall's rules cannot be read: " + firewall.whyUnknown + '.');
  }
  std::vector<std::string> states;
  bool passes = false;
  bool closed = false;
  bool local = false;
  bool policyOnly = false;
  bool activeKnown = false;
  for (const FirewallProfile& profile : firewall.profiles) {
    if (profile.active.has_value() && !*profile.active) continue;
    activeKnown = activeKnown || profile.active.has_value();
    std::string limits;
    const Passage passage = PassageOf(firewall, profile, limits);
    passes = passes || passage == Passage::kOpen || passage == Passage::kLimited;
    closed = closed || passage == Passage::kClosed || passage == Passage::kBlocked;
    local = local || passage == Passage::kLocalSubnet;
    policyOnly = policyOnly || !profile.mergesLocalRules;
    states.push_back(profile.name + ' ' + StateOf(profile, passage, limits));
  }
  if (states.empty()) return Skipped(kStep, "No network is connected.");
  const std::string text = "UDP port 161, by profile: " + Joined(states) + '.';
  // If the profile of the network is not known, one open profile is enough.
  if (activeKnown ? closed || local : !passes) {
    const char* const action = local && (!activeKnown || !closed) ? kWidenRule : kEnableRule;
    return Failed(kStep, text, policyOnly ? kChangePolicy : action);
  }
  return Ok(kStep, text + (activeKnown ? "" : " The profile in use could not be read."));
}

}  // namespace Check
