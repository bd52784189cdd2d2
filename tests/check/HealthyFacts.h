#pragma once

#include "BuildSettings.h"
#include "check/Facts.h"
#include "check/Verdicts.h"

namespace Check::Tests {

inline SettingValue Number(const char* name, std::uint32_t number) {
  SettingValue value;
  value.name = name;
  value.number = number;
  value.isNumber = true;
  return value;
}

inline SettingValue Text(const char* name, const char* text) {
  SettingValue value;
  value.name = name;
  value.text = text;
  return value;
}

inline KeyFacts Read(std::vector<SettingValue> values) {
  return {KeyFacts::State::kRead, {}, std::move(values)};
}

inline KeyFacts Unreadable() {
  return {KeyFacts::State::kUnreadable, "access is denied", {}};
}

inline constexpr char kDll[] = R"(C:\Program Files\Veltrin Systems\Corvane SNMP\SNMPd.dll)";
inline constexpr char kRule[] =
    R"(v2.30|Action=Allow|Active=TRUE|Dir=In|Protocol=17|LPort=161|App=%SystemRoot%\system32\snmp.exe|)"
    R"(Svc=SNMP|Name=SNMP Service (UDP In)|)";

// Facts of a server on which every step is in order.
inline Facts HealthyFacts() {
  Facts facts;
  facts.service.state = ServiceFacts::State::kRunning;
  facts.service.processId = 1234;
  facts.service.startType = 2;
  facts.service.account = "LocalSystem";
  facts.service.startedAt = "2026-11-21 06:00:05";
  facts.service.modules = {R"(C:\Windows\System32\snmp.exe)", kDll};
  facts.accountSids = {"S-1-5-18", "S-1-5-32-544"};
  facts.registration.agents = {
      {"CorvaneSnmpAgent", R"(SOFTWARE\Veltrin Systems\Corvane SNMP\CurrentVersion)", kDll, false}};
  facts.dll.exists = true;
  facts.dll.access.entries = {{true, 0x1F01FF, "S-1-5-18"}};
  facts.dll.image.kind = Image::Kind::kImage;
  facts.dll.image.machine = kMachineX64;
  facts.dll.image.isDll = true;
  facts.dll.image.exports = {"SnmpExtensionInit", "SnmpExtensionQuery", "SnmpExtensionTrap"};
  facts.dll.image.version = CORVANE_VERSION_TEXT ".0";
  facts.communities.service = Read({Number("monitor", 4)});
  facts.managers.service = Read({Text("1", "localhost"), Text("2", "198.51.100.1")});
  facts.trapDestinations.service = Read({Text("monitor", "198.51.100.1")});
  facts.link.listeners = {{"127.0.0.1", 800, "corvane.exe"}};
  facts.link.connections = {{"127.0.0.1", 1234, "snmp.exe"}};
  facts.logFolder.path = R"(C:\ProgramData\Veltrin Systems\Corvane\SNMP\Logs)";
  facts.logFolder.exists = true;
  facts.logFolder.access.entries = {{true, 0x1F01FF, "S-1-5-18"}};
  facts.log.today = "2026-11-21";
  facts.log.minuteAgo = "2026-11-21 11:59:00";
  facts.log.files = 1;
  facts.log.newest = "Log2026-11-21.log";
  LogReader reader;
  reader.Feed("2026-11-21",
              "06:00:05.668: Info: Starting Corvane SNMP extension agent..\r\n"
              "06:00:05.668: Info: Extension agent started!\r\n"
              "06:00:05.668: Info: Connection to Corvane process established..\r\n"
              "06:00:20.684: Info: SNMP variables successfully updated\r\n");
  facts.log.findings = reader.Findings();
  facts.answer.outcome = AnswerFacts::Outcome::kAnswered;
  for (const Oid& oid : RequestedVariables()) {
    const std::string name = VariableNameOf(oid);
    const bool isText = name == "corvaneProductName" || name == "corvaneProductVersion";
    SnmpBinding binding;
    binding.oid = oid;
    binding.kind = isText ? SnmpBinding::Kind::kText : SnmpBinding::Kind::kNumber;
    if (isText) binding.text = "Corvane";
    facts.answer.response.bindings.push_back(binding);
  }
  facts.firewall.rules = {kRule};
  facts.firewall.profiles = {{"Domain", true, false, true, true},
                             {"Private", true, false, true, false},
                             {"Public", true, false, true, false}};
  return facts;
}

}  // namespace Check::Tests
