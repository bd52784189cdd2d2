#pragma once

#include <cstddef>

namespace Check {

enum class StepId : std::size_t {
  kService,
  kKey,
  kPath,
  kFile,
  kImage,
  kLoaded,
  kEvents,
  kCommunities,
  kManagers,
  kTraps,
  kPort,
  kLink,
  kFolder,
  kLog,
  kAnswer,
  kFirewall,
};

// One step. The texts are those of the table in the operator's guide.
struct Step {
  const char* name;
  const char* lookAt;
  const char* mustBe;
  const char* ifNot;
};

// The steps in their order. The program and the guide have the same list: the guide's table has
// exactly the rows that StepTable (check/Report.h) returns. A test checks this.
inline constexpr Step kSteps[] = {
    {"service", "`sc.exe query SNMP` and `sc.exe qc SNMP`",
     "installed, running, start type automatic",
     "install the service, set its start type to automatic, and start it"},
    {"key", R"(`reg query HKLM\SYSTEM\CurrentControlSet\Services\SNMP\Parameters\ExtensionAgents`)",
     R"(one value `SOFTWARE\Veltrin Systems\Corvane SNMP\CurrentVersion`)",
     "install the package. A 32-bit installer writes to another place. If the agent is registered "
     "twice, delete one value"},
    {"path",
     R"(`reg query "HKLM\SOFTWARE\Veltrin Systems\Corvane SNMP\CurrentVersion" /v Pathname`)",
     "the full path of `SNMPd.dll`", "install the package again"},
    {"file", "that path", "the file exists, and the account of the service can read it",
     "install the package again. Check the quarantine of the virus scanner"},
    {"image", "the DLL",
     "a 64-bit DLL with the three functions of an extension agent; every library that it imports "
     "is "
     "there",
     "install the x64 package again"},
    {"loaded", "`tasklist /m SNMPd.dll`, as an administrator", "`snmp.exe`",
     "restart the service, then see the next step"},
    {"events", "the System log of the event viewer, source SNMP, since the service's start",
     "no error", "the error names the reason"},
    {"communities", "`services.msc`, SNMP Service, Security; or the policy",
     "at least one community with the rights READ ONLY",
     "add a community, with the rights READ ONLY"},
    {"managers", "the same page", "your manager is in the list, or the list is empty",
     "add your manager. A new service accepts `localhost` only"},
    {"traps", "`services.msc`, SNMP Service, Traps; or the policy", "the address of your manager",
     "add the address of your manager. Without a destination no trap leaves the machine"},
    {"port", R"(`netstat -ano \| findstr :16969`)", "a listener at 127.0.0.1 or 0.0.0.0",
     "start the Corvane software"},
    {"link", "the same command", "an established connection of the service's process",
     "restart the service. If that does not help, see the log"},
    {"folder", R"(`icacls "C:\ProgramData\Veltrin Systems\Corvane\SNMP\Logs"`)",
     "the folder exists, and the account of the service can write to it",
     "give the account of the service the right to write to the folder"},
    {"log", "today's file in that folder",
     "`Extension agent started!` since the service's start, and no `Error` line after it",
     "restart the service. For an `Error` line see the log"},
    {"answer", "`corvane-check --community monitor`", "all eight variables",
     "check the community and the permitted managers, then the steps before this one"},
    {"firewall", "`wf.msc`, inbound rules, \"SNMP Service (UDP In)\"",
     "enabled for the profile of your network, and not limited to the local subnet",
     "enable the rule, or add a rule for UDP port 161"},
};

inline constexpr std::size_t kStepCount = sizeof kSteps / sizeof kSteps[0];

[[nodiscard]] constexpr const Step& StepOf(StepId id) {
  return kSteps[static_cast<std::size_t>(id)];
}

// The steps are counted from 1.
[[nodiscard]] constexpr std::size_t NumberOf(StepId id) {
  return static_cast<std::size_t>(id) + 1;
}

}  // namespace Check
