#include "check/FirewallRules.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>

namespace Check {
namespace {

constexpr unsigned kSnmpPort = 161;

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

struct Rule {
  std::string action, active, direction, protocol, program, service;
  std::vector<std::string> ports, profiles, remote;
};

Rule ReadRule(std::string_view text) {
  Rule rule;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('|'), text.size());
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t equals = field.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string name = Lower(field.substr(0, equals));
    const std::string value = Lower(field.substr(equals + 1));
    if (name == "action") rule.action = value;
    if (name == "active") rule.active = value;
    if (name == "dir") rule.direction = value;
    if (name == "protocol") rule.protocol = value;
    if (name == "app") rule.program = value;
    if (name == "svc") rule.service = value;
    if (name == "profile") rule.profiles.push_back(value);
    if (name.substr(0, 5) == "lport") rule.ports.push_back(value);
    if (name.substr(0, 3) == "ra4" || name.substr(0, 3) == "ra6") {
      rule.remote.emplace_back(field.substr(equals + 1));
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

bool IsForSnmp(const Rule& rule, const std::string& profile) {
  const auto none = [](const auto& list, auto holds) {
    return !list.empty() && std::none_of(list.begin(), list.end(), holds);
  };
  if (rule.active != "true" || rule.direction != "in") return false;
  if (!rule.protocol.empty() && rule.protocol != "17" && rule.protocol != "256") return false;
  if (none(rule.ports, [](const std::string& ports) { return HasPort(ports); })) return false;
  if (none(rule.profiles, [&](const std::string& name) { return name == profile; })) return false;
  if (!rule.program.empty() && rule.program != "system" && !EndsWith(rule.program, "\\snmp.exe")) {
    return false;
  }
  return rule.service.empty() || rule.service == "*" || rule.service == "snmp";
}

}  // namespace

Passage PassageOf(const std::vector<std::string>& rules, const FirewallProfile& profile,
                  std::string& limits) {
  limits.clear();
  if (!profile.on) return Passage::kOpen;
  const std::string name = Lower(profile.name);
  bool open = profile.allowsByDefault;
  for (const std::string& text : rules) {
    const Rule rule = ReadRule(text);
    if (!IsForSnmp(rule, name)) continue;
    if (rule.action == "block" && rule.remote.empty()) return Passage::kBlocked;
    if (rule.action != "allow") continue;
    if (rule.remote.empty()) open = true;
    for (const std::string& address : rule.remote) {
      if (limits.find(address) != std::string::npos) continue;
      limits += (limits.empty() ? "" : ", ") + address;
    }
  }
  if (open) {
    limits.clear();
    return Passage::kOpen;
  }
  return limits.empty() ? Passage::kClosed : Passage::kLimited;
}

}  // namespace Check
