#include "host/Registration.h"

namespace Host {
namespace {

constexpr char kAgentsKey[] =
    "SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents";
constexpr char kPathname[] = "Pathname";

using View = Registry::View;
using ValueKind = Registry::ValueKind;

std::string Full(const std::string& key) {
  return "HKLM\\" + key;
}

// Registry editors show the value without a name like this.
std::string Shown(const std::string& name) {
  return name.empty() ? "(Default)" : name;
}

// Returns what is wrong with a text value; empty if nothing is.
std::string WhyNoText(const Registry::Value& value, const std::string& name,
                      const std::string& key) {
  if (value.kind == ValueKind::Missing) return Full(key) + " has no value " + Shown(name);
  if (value.kind == ValueKind::NotText) {
    return Shown(name) + " in " + Full(key) + " is not a text (REG_SZ or REG_EXPAND_SZ)";
  }
  return value.text.empty() ? Shown(name) + " in " + Full(key) + " is empty" : "";
}

std::string WhyNoKey(const Registry& registry, const std::string& key) {
  if (registry.HasKey(key, View::Bits64)) return {};
  const bool redirected = registry.HasKey(key, View::Bits32);
  return "there is no key " + Full(key) +
         (redirected
              ? ", except in the registry's 32-bit view, which a 64-bit service does not read"
              : "");
}

// Follows one value of the agents' key. Returns what is wrong, or an empty text
// with the DLL in `path`.
std::string Follow(const Registry& registry, const std::string& name, std::string& path) {
  const Registry::Value agent = registry.Read(kAgentsKey, name);
  std::string fault = WhyNoText(agent, name, kAgentsKey);
  if (fault.empty()) fault = WhyNoKey(registry, agent.text);
  if (!fault.empty()) return fault;
  const Registry::Value pathname = registry.Read(agent.text, kPathname);
  fault = WhyNoText(pathname, kPathname, agent.text);
  if (!fault.empty()) return fault;
  path = registry.FindFile(pathname.text);
  return path.empty() ? "there is no file " + pathname.text : "";
}

// Two registrations are complete: takes neither.
void RefuseSeveral(Registration& result, const std::string& name, const std::string& path) {
  result.complaints.push_back("several agents are registered; name one as MODULE: " + result.path +
                              " or " + path + " (" + result.name + ", " + name + ")");
  result.path.clear();
}

}  // namespace

Registration FindRegisteredAgent(const Registry& registry) {
  Registration result;
  if (!registry.HasKey(kAgentsKey, View::Bits64)) {
    result.complaints = {"no agent is registered: there is no key " + Full(kAgentsKey)};
    return result;
  }
  const std::vector<std::string> names = registry.ValueNames(kAgentsKey);
  if (names.empty()) {
    result.complaints = {"no agent is registered: " + Full(kAgentsKey) + " holds no value"};
  }
  for (const std::string& name : names) {
    std::string path;
    const std::string fault = Follow(registry, name, path);
    if (!fault.empty()) {
      result.complaints.push_back(Shown(name) + ": " + fault);
    } else if (!result.path.empty()) {
      RefuseSeveral(result, Shown(name), path);
      return result;
    } else {
      result.name = Shown(name);
      result.path = path;
    }
  }
  return result;
}

}  // namespace Host
