#include "check/FirewallRules.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <iterator>

#include "json/Ascii.h"

namespace Check {
namespace {

using Vask::EqualsIgnoringCase;

constexpr unsigned kSnmpPort = 161;

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         EqualsIgnoringCase(text.substr(text.size() - end.size()), end);
}

struct Rule {
  using Values = std::vector<std::string_view>;
  Values action, active, direction, protocol, program, service, ports, profiles, remote;
  bool hasOtherCondition = false;
};

// A field of a rule, and the member that gets its value.
struct Field {
  const char* name;
  Rule::Values Rule::*values;  // nullptr if the field does not restrict the rule
};

// Any other field is a condition that a request to the service may not meet, such as an app package
// (AppPkgId), a user (LUOwn), a remote port (RPort) or an interface type (IFType).
constexpr Field kFields[] = {
    {"Action", &Rule::action},     {"Active", &Rule::active},   {"Dir", &Rule::direction},
    {"Protocol", &Rule::protocol}, {"App", &Rule::program},     {"Svc", &Rule::service},
    {"LPort", &Rule::ports},       {"LPort2_10", &Rule::ports}, {"Profile", &Rule::profiles},
    {"RA4", &Rule::remote},        {"RA42", &Rule::remote},     {"RA6", &Rule::remote},
    {"RA62", &Rule::remote},       {"Name", nullptr},           {"Desc", nullptr},
    {"EmbedCtxt", nullptr},        {"Edge", nullptr},           {"Defer", nullptr},
};

Rule ReadRule(std::string_view text) {
  Rule rule;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('|'), text.size());
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t equals = field.find('=');
    if (equals == std::string_view::npos) continue;  // the version, or the end
    const std::string_view name = field.substr(0, equals);
    const std::string_view value = field.substr(equals + 1);
    if (value.empty()) continue;
    const auto* const known =
        std::find_if(std::begin(kFields), std::end(kFields),
                     [&](const Field& row) { return EqualsIgnoringCase(name, row.name); });
    if (known == std::end(kFields)) {
      rule.hasOtherCondition = true;
    } else if (known->values != nullptr) {
      (rule.*known->values).push_back(value);
    }
  }
  return rule;
}

// "161", "160-170", or a list of them with commas.
bool HasPort(std::string_view ports) {
  while (!ports.empty()) {
    const std::size_t end = std::min(ports.find(','), ports.size());
    const std::string_view range = ports.substr(0, end);
    ports.remove_prefix(std::min(end + 1, ports.size()));
    unsigned first = 0;
    const char* const stop = range.data() + range.size();
    const auto [at, fault] = std::from_chars(range.data(), stop, first);
    if (fault != std::errc{}) continue;
    unsigned last = first;
    if (at != stop && *at == '-') std::from_chars(at + 1, stop, last);
    if (first <= kSnmpPort && kSnmpPort <= last) return true;
  }
  return false;
}

// Whether one of the values fits. A field that the rule does not have fits always.
template <class Fits>
bool Fit(const Rule::Values& values, Fits fits) {
  return values.empty() || std::any_of(values.begin(), values.end(), fits);
}

bool IsOneOf(const Rule::Values& values, std::initializer_list<std::string_view> wanted) {
  return Fit(values, [&](std::string_view value) {
    return std::any_of(wanted.begin(), wanted.end(),
                       [&](std::string_view one) { return EqualsIgnoringCase(value, one); });
  });
}

bool Is(const Rule::Values& values, std::string_view wanted) {
  return !values.empty() && IsOneOf(values, {wanted});
}

bool IsForSnmp(const Rule& rule, std::string_view profile) {
  return !rule.hasOtherCondition && Is(rule.active, "TRUE") && Is(rule.direction, "In") &&
         IsOneOf(rule.protocol, {"17", "256"}) && Fit(rule.ports, HasPort) &&
         IsOneOf(rule.profiles, {profile}) && IsOneOf(rule.service, {"*", "SNMP"}) &&
         Fit(rule.program, [](std::string_view path) { return EndsWith(path, "\\snmp.exe"); });
}

}  // namespace

Passage PassageOf(const FirewallFacts& firewall, const FirewallProfile& profile,
                  std::string& limits) {
  limits.clear();
  if (!profile.on) return Passage::kOpen;
  std::vector<std::string> rules = firewall.policyRules;
  if (profile.mergesLocalRules) {
    rules.insert(rules.end(), firewall.rules.begin(), firewall.rules.end());
  }
  bool open = profile.allowsByDefault;
  std::vector<std::string> remote;
  for (const std::string& text : rules) {
    const Rule rule = ReadRule(text);
    if (!IsForSnmp(rule, profile.name)) continue;
    if (Is(rule.action, "Block") && rule.remote.empty()) return Passage::kBlocked;
    if (!Is(rule.action, "Allow")) continue;
    if (rule.remote.empty()) open = true;
    for (const std::string_view address : rule.remote) {
      if (std::find(remote.begin(), remote.end(), address) == remote.end()) {
        remote.emplace_back(address);
      }
    }
  }
  if (open) return Passage::kOpen;
  for (const std::string& address : remote) limits += (limits.empty() ? "" : ", ") + address;
  if (remote.empty()) return Passage::kClosed;
  const bool isLocal = std::all_of(remote.begin(), remote.end(), [](const std::string& address) {
    return EqualsIgnoringCase(address, "LocalSubnet");
  });
  return isLocal ? Passage::kLocalSubnet : Passage::kLimited;
}

}  // namespace Check
