#include "host/Registration.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using Host::Registration;
using Host::Registry;
using Texts = std::vector<std::string>;

constexpr char kAgents[] = "SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents";

Registry::Value Text(const std::string& text) {
  return {Registry::ValueKind::Text, text};
}
const Registry::Value kNumber = {Registry::ValueKind::NotText, {}};

// Keys with their values in order, and files. At first, one agent is registered
// correctly.
class FakeRegistry final : public Registry {
 public:
  using Values = std::vector<std::pair<std::string, Value>>;
  std::map<std::string, Values> keys = {{kAgents, {{"Agent", Text("SOFTWARE\\A")}}},
                                        {"SOFTWARE\\A", {{"Pathname", Text("C:\\a.dll")}}}};
  Texts keysOf32Bits;
  std::map<std::string, std::string> files = {{"C:\\a.dll", "C:\\a.dll"}};

  bool HasKey(const std::string& key, View view) const override {
    if (view == View::Bits64) return keys.count(key) != 0;
    for (const std::string& other : keysOf32Bits) {
      if (other == key) return true;
    }
    return false;
  }
  Texts ValueNames(const std::string& key) const override {
    Texts names;
    for (const auto& [name, value] : keys.at(key)) names.push_back(name);
    return names;
  }
  Value Read(const std::string& key, const std::string& wanted) const override {
    for (const auto& [name, value] : keys.at(key)) {
      if (name == wanted) return value;
    }
    return {};
  }
  std::string FindFile(const std::string& path) const override {
    const auto file = files.find(path);
    return file == files.end() ? "" : file->second;
  }
};

TEST(HostRegistration, ValueLeadsOverItsKeyToTheDll) {
  const Registration found = FindRegisteredAgent(FakeRegistry());
  EXPECT_EQ(found.path, "C:\\a.dll");
  EXPECT_EQ(found.name, "Agent");
  EXPECT_EQ(found.complaints, Texts{});
}

TEST(HostRegistration, BareFileNameIsSearchedFor) {
  FakeRegistry registry;
  registry.keys["SOFTWARE\\A"] = {{"Pathname", Text("a.dll")}};
  registry.files = {{"a.dll", "C:\\windows\\system32\\a.dll"}};
  EXPECT_EQ(FindRegisteredAgent(registry).path, "C:\\windows\\system32\\a.dll");
}

struct BrokenStep {
  const char* name;
  void (*breakIt)(FakeRegistry&);
  const char* complaint;
};

class HostRegistrationBroken : public testing::TestWithParam<BrokenStep> {};

TEST_P(HostRegistrationBroken, IsNamedWithItsStep) {
  FakeRegistry registry;
  GetParam().breakIt(registry);
  const Registration found = FindRegisteredAgent(registry);
  EXPECT_EQ(found.path, "");
  EXPECT_EQ(found.complaints, Texts{GetParam().complaint});
}

#define AGENTS "HKLM\\SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents"
INSTANTIATE_TEST_SUITE_P(
    Steps, HostRegistrationBroken,
    testing::Values(
        BrokenStep{"NoServiceKey", [](FakeRegistry& r) { r.keys.erase(kAgents); },
                   "no agent is registered: there is no key " AGENTS},
        BrokenStep{"NoAgent", [](FakeRegistry& r) { r.keys[kAgents].clear(); },
                   "no agent is registered: " AGENTS " holds no value"},
        BrokenStep{"ValueIsANumber", [](FakeRegistry& r) { r.keys[kAgents][0].second = kNumber; },
                   "Agent: Agent in " AGENTS " is not a text (REG_SZ or REG_EXPAND_SZ)"},
        BrokenStep{"ValueIsEmpty", [](FakeRegistry& r) { r.keys[kAgents][0].second = Text(""); },
                   "Agent: Agent in " AGENTS " is empty"},
        BrokenStep{"EmptyValueWithoutAName",
                   [](FakeRegistry& r) {
                     r.keys[kAgents] = {{"", Text("")}};
                   },
                   "(Default): (Default) in " AGENTS " is empty"},
        BrokenStep{"NoAgentKey", [](FakeRegistry& r) { r.keys.erase("SOFTWARE\\A"); },
                   "Agent: there is no key HKLM\\SOFTWARE\\A"},
        BrokenStep{
            "AgentKeyOf32Bits",
            [](FakeRegistry& r) {
              r.keys.erase("SOFTWARE\\A");
              r.keysOf32Bits = {"SOFTWARE\\A"};
            },
            "Agent: there is no key HKLM\\SOFTWARE\\A, except in the registry's 32-bit view, "
            "which a 64-bit service does not read"},
        BrokenStep{"NoPathname", [](FakeRegistry& r) { r.keys["SOFTWARE\\A"].clear(); },
                   "Agent: HKLM\\SOFTWARE\\A has no value Pathname"},
        BrokenStep{"PathnameIsANumber",
                   [](FakeRegistry& r) { r.keys["SOFTWARE\\A"][0].second = kNumber; },
                   "Agent: Pathname in HKLM\\SOFTWARE\\A is not a text (REG_SZ or REG_EXPAND_SZ)"},
        BrokenStep{"PathnameIsEmpty",
                   [](FakeRegistry& r) { r.keys["SOFTWARE\\A"][0].second = Text(""); },
                   "Agent: Pathname in HKLM\\SOFTWARE\\A is empty"},
        BrokenStep{"NoFile", [](FakeRegistry& r) { r.files.clear(); },
                   "Agent: there is no file C:\\a.dll"}),
    [](const auto& row) { return row.param.name; });

TEST(HostRegistration, BrokenOnesAreSkippedWithAComplaint) {
  FakeRegistry registry;
  auto& agents = registry.keys[kAgents];
  agents.insert(agents.begin(), {"Before", Text("SOFTWARE\\Before")});
  agents.emplace_back("Behind", Text("SOFTWARE\\Behind"));
  const Registration found = FindRegisteredAgent(registry);
  EXPECT_EQ(found.path, "C:\\a.dll");
  EXPECT_EQ(found.complaints, (Texts{"Before: there is no key HKLM\\SOFTWARE\\Before",
                                     "Behind: there is no key HKLM\\SOFTWARE\\Behind"}));
}

TEST(HostRegistration, TheUserMustChooseAmongSeveralAgents) {
  FakeRegistry registry;
  registry.keys[kAgents].emplace_back("Second", Text("SOFTWARE\\B"));
  registry.keys["SOFTWARE\\B"] = {{"Pathname", Text("C:\\b.dll")}};
  registry.files["C:\\b.dll"] = "C:\\b.dll";
  const Registration found = FindRegisteredAgent(registry);
  EXPECT_EQ(found.path, "");
  EXPECT_EQ(found.complaints, Texts{"several agents are registered; name one as MODULE: "
                                    "C:\\a.dll or C:\\b.dll (Agent, Second)"});
}

}  // namespace
