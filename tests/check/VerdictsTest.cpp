#include "check/Verdicts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "check/Access.h"
#include "tests/check/HealthyFacts.h"

namespace Check::Tests {
namespace {

using testing::HasSubstr;

const Verdict& At(const std::vector<Verdict>& verdicts, StepId step) {
  return verdicts[static_cast<std::size_t>(step)];
}

TEST(Verdicts, HealthyServerPassesEveryStepInOrder) {
  const auto verdicts = Judge(HealthyFacts(), {});
  ASSERT_EQ(verdicts.size(), kStepCount);
  for (std::size_t i = 0; i < verdicts.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(verdicts[i].step), i);
    EXPECT_EQ(verdicts[i].status, Status::kOk) << kSteps[i].name << ": " << verdicts[i].text;
    EXPECT_EQ(verdicts[i].action, "") << kSteps[i].name;
  }
}

// One change of the healthy server, and the verdict that its step must give.
struct Row {
  const char* name;
  std::function<void(Facts&)> change;
  StepId step;
  Status status;
  const char* text;    // part of the verdict's text
  const char* action;  // part of what to do; "" for none
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

class BrokenServer : public testing::TestWithParam<Row> {};

TEST_P(BrokenServer, IsReportedByItsStep) {
  const Row& row = GetParam();
  Facts facts = HealthyFacts();
  row.change(facts);
  const auto verdicts = Judge(facts, {});
  const Verdict& verdict = At(verdicts, row.step);
  EXPECT_EQ(verdict.status, row.status) << verdict.text;
  EXPECT_THAT(verdict.text, HasSubstr(row.text));
  EXPECT_THAT(verdict.action, HasSubstr(row.action));
  EXPECT_EQ(verdict.action.empty(), row.status != Status::kFailed) << verdict.action;
}

void UseLog(Facts& facts, const char* text) {
  LogReader reader;
  reader.Feed("2026-11-21", text);
  facts.log.findings = reader.Findings();
}

constexpr auto kFailed = Status::kFailed;
constexpr auto kSkipped = Status::kSkipped;
constexpr auto kOk = Status::kOk;
using F = Facts;
using Kind = Image::Kind;
using Outcome = AnswerFacts::Outcome;
using State = ServiceFacts::State;

const Row kServiceRows[] = {
    {"ServiceMissing", [](F& f) { f.service.state = State::kMissing; }, StepId::kService, kFailed,
     "not installed", "Install-WindowsFeature"},
    {"ServiceStopped", [](F& f) { f.service.state = State::kStopped; }, StepId::kService, kFailed,
     "is stopped", "net start SNMP"},
    {"ServicePaused", [](F& f) { f.service.state = State::kPaused; }, StepId::kService, kFailed,
     "is paused", "net start SNMP"},
    {"ServiceStarting", [](F& f) { f.service.state = State::kStarting; }, StepId::kService, kFailed,
     "is starting", "net start SNMP"},
    {"ServiceStopping", [](F& f) { f.service.state = State::kStopping; }, StepId::kService, kFailed,
     "is stopping", "net start SNMP"},
    {"ServiceDisabled",
     [](F& f) {
       f.service.state = State::kStopped;
       f.service.startType = 4;
     },
     StepId::kService, kFailed, "start type is disabled", "sc.exe config SNMP start= auto"},
    {"ServiceStartsManually", [](F& f) { f.service.startType = 3; }, StepId::kService, kFailed,
     "manual: it does not start with Windows", "sc.exe config SNMP start= auto"},
    {"ServiceRunsAlthoughDisabled", [](F& f) { f.service.startType = 4; }, StepId::kService,
     kFailed, "disabled: it does not start with Windows", "sc.exe config SNMP start= auto"},
    {"ServiceOfAnotherStartType", [](F& f) { f.service.startType = 7; }, StepId::kService, kFailed,
     "unknown (7): it does not start with Windows", "sc.exe config SNMP start= auto"},
    {"ServiceUnknown",
     [](F& f) {
       f.service.state = State::kUnknown;
       f.service.whyUnknown = "access is denied";
     },
     StepId::kService, kSkipped, "access is denied", ""},
    {"ServiceAccountIsNamed", [](F&) {}, StepId::kService, kOk,
     "runs as LocalSystem, process 1234, since 2026-11-21 06:00:05", ""},
    {"KeyMissing", [](F& f) { f.registration.agents.clear(); }, StepId::kKey, kFailed,
     R"(ExtensionAgents is "SOFTWARE\Veltrin Systems\Corvane SNMP\CurrentVersion")",
     "install the package"},
    {"KeyOfOtherAgentOnly",
     [](F& f) {
       f.registration.agents = {{"Other", R"(SOFTWARE\Other)", R"(C:\o.dll)", false}};
     },
     StepId::kKey, kFailed, "No value of", "install the package"},
    {"KeyTwice",
     [](F& f) {
       f.registration.agents.push_back(f.registration.agents[0]);
       f.registration.agents[1].name = "ByHand";
     },
     StepId::kKey, kFailed, "2 times (values CorvaneSnmpAgent, ByHand)", "delete all but one"},
    {"KeyBesideAFileOfTheSameName",
     [](F& f) {
       f.registration.agents.insert(f.registration.agents.begin(),
                                    {"Other", R"(SOFTWARE\Other)", R"(D:\x\snmpD.DLL)", false});
     },
     StepId::kKey, kOk, "names the agent (value CorvaneSnmpAgent)", ""},
    {"KeyByHand", [](F& f) { f.registration.agents[0].key = R"(SOFTWARE\By Hand)"; }, StepId::kKey,
     kOk, "names the agent (value CorvaneSnmpAgent)", ""},
    {"KeyWithBackslashesAround",
     [](F& f) {
       f.registration.agents[0].key = R"(\software\veltrin systems\corvane snmp\currentversion\)";
     },
     StepId::kKey, kOk, "names the agent", ""},
    {"KeyUnreadable", [](F& f) { f.registration.whyUnknown = "access is denied"; }, StepId::kKey,
     kSkipped, "access is denied", ""},
    {"PathMissing", [](F& f) { f.registration.agents[0].path = ""; }, StepId::kPath, kFailed,
     "has no text value Pathname", "install the package again"},
    {"PathIsAName", [](F& f) { f.registration.agents[0].path = "SNMPd.dll"; }, StepId::kPath,
     kFailed, "SNMPd.dll is not a full path", "install the package again"},
    {"FileOfARelativePath", [](F& f) { f.registration.agents[0].path = "SNMPd.dll"; },
     StepId::kFile, kSkipped, "full path of the DLL is not known", ""},
    {"LoadedOfARelativePath", [](F& f) { f.registration.agents[0].path = "SNMPd.dll"; },
     StepId::kLoaded, kSkipped, "full path of the DLL is not known", ""},
    {"PathIn32BitView",
     [](F& f) {
       f.registration.agents[0].path = "";
       f.registration.agents[0].in32BitView = true;
     },
     StepId::kPath, kFailed, "32-bit view", "x64 package"},
    {"PathWithoutRegistration", [](F& f) { f.registration.agents.clear(); }, StepId::kPath,
     kSkipped, "not registered", ""},
    {"FileMissing", [](F& f) { f.dll.exists = false; }, StepId::kFile, kFailed, "There is no file",
     "quarantine"},
    {"FileUnreadable", [](F& f) { f.dll.whyUnknown = "access is denied"; }, StepId::kFile, kSkipped,
     "access is denied", ""},
    {"FileForbiddenToTheService", [](F& f) { f.dll.access.entries.clear(); }, StepId::kFile,
     kFailed, "may not read and execute", "give the account"},
    {"FileRightsUnknown", [](F& f) { f.dll.access.whyUnknown = "Windows error 5"; }, StepId::kFile,
     kOk, "could not be read (Windows error 5)", ""},
    {"FileOfAnotherVersion", [](F& f) { f.dll.image.version = "9.9.9.0"; }, StepId::kFile, kOk,
     "Version 9.9.9.0. This program has version " CORVANE_VERSION_TEXT, ""},
    {"ImageOf32Bits", [](F& f) { f.dll.image.machine = kMachineX86; }, StepId::kImage, kFailed,
     "32-bit DLL", "x64 package"},
    {"ImageForArm64", [](F& f) { f.dll.image.machine = kMachineArm64; }, StepId::kImage, kFailed,
     "ARM64", "x64 package"},
    {"ImageOfAnotherMachine", [](F& f) { f.dll.image.machine = 0x1234; }, StepId::kImage, kFailed,
     "number 4660", "x64 package"},
    {"ImageIsText", [](F& f) { f.dll.image.kind = Kind::kNotAnImage; }, StepId::kImage, kFailed,
     "not a Windows DLL", "x64 package"},
    {"ImageIsCut", [](F& f) { f.dll.image.kind = Kind::kTruncated; }, StepId::kImage, kFailed,
     "damaged", "x64 package"},
    {"ImageUnread", [](F& f) { f.dll.image.kind = Kind::kUnread; }, StepId::kImage, kSkipped,
     "The file cannot be read", ""},
    {"ImageIsAProgram", [](F& f) { f.dll.image.isDll = false; }, StepId::kImage, kFailed,
     "a program, not a DLL", "x64 package"},
    {"ImageLacksAnExport", [](F& f) { f.dll.image.exports.pop_back(); }, StepId::kImage, kFailed,
     "no function SnmpExtensionTrap", "x64 package"},
    {"ImageLacksALibrary", [](F& f) { f.dll.missingLibraries = {"snmpapi.dll"}; }, StepId::kImage,
     kFailed, "needs snmpapi.dll", "repair Windows"},
    {"ImageWithoutFile", [](F& f) { f.dll.exists = false; }, StepId::kImage, kSkipped,
     "There is no file", ""},
    {"NotLoaded", [](F& f) { f.service.modules.pop_back(); }, StepId::kLoaded, kFailed,
     "has not loaded the DLL", "restart the service"},
    {"LoadedFromElsewhere", [](F& f) { f.service.modules.back() = R"(D:\old\SNMPd.dll)"; },
     StepId::kLoaded, kFailed, R"(has loaded D:\old\SNMPd.dll)", "restart the service"},
    {"LoadedUnknown", [](F& f) { f.service.whyNoModules = "access is denied"; }, StepId::kLoaded,
     kSkipped, "access is denied", ""},
    {"LoadedWithoutService", [](F& f) { f.service.state = State::kStopped; }, StepId::kLoaded,
     kSkipped, "does not run", ""},
    {"EventFound",
     [](F& f) {
       f.events = {{true, "event 1102: x"}};
     },
     StepId::kEvents, kFailed, "1 error(s) of the source SNMP", "names the reason"},
    {"EventsWithoutError",
     [](F& f) {
       f.events = {{false, "event 1001: x"}};
     },
     StepId::kEvents, kOk, "No error", ""},
    {"EventsUnreadable", [](F& f) { f.eventsUnknown = "access is denied"; }, StepId::kEvents,
     kSkipped, "access is denied", ""},
};
INSTANTIATE_TEST_SUITE_P(Registration, BrokenServer, testing::ValuesIn(kServiceRows),
                         [](const auto& row) { return row.param.name; });

const Row kSettingRows[] = {
    {"NoCommunity", [](F& f) { f.communities.service = {}; }, StepId::kCommunities, kFailed,
     "accepts no community", "services.msc"},
    {"CommunityThatOnlyNotifies", [](F& f) { f.communities.service = Read({Number("c", 2)}); },
     StepId::kCommunities, kFailed, "No community has the right to read", "READ ONLY"},
    {"CommunityThatMayWrite", [](F& f) { f.communities.service = Read({Number("c", 8)}); },
     StepId::kCommunities, kOk, "1 of 1 communities may read", ""},
    {"CommunityPublic", [](F& f) { f.communities.service = Read({Number("Public", 4)}); },
     StepId::kCommunities, kOk, "which everybody knows", ""},
    {"CommunitiesUnreadable", [](F& f) { f.communities.service = Unreadable(); },
     StepId::kCommunities, kSkipped, "access is denied", ""},
    {"CommunitiesOfAPolicy", [](F& f) { f.communities.policy = Read({Text("1", "plant")}); },
     StepId::kCommunities, kOk, "1 of 1 communities may read (set by a policy", ""},
    {"EmptyPolicyOverridesCommunities", [](F& f) { f.communities.policy = Read({}); },
     StepId::kCommunities, kFailed, "set by a policy", "group policy"},
    {"ListsWithoutService", [](F& f) { f.service.state = State::kMissing; }, StepId::kManagers,
     kSkipped, "not installed", ""},
    {"LocalhostOnly", [](F& f) { f.managers.service = Read({Text("1", "LocalHost")}); },
     StepId::kManagers, kFailed, "this machine only", "add your manager in services.msc"},
    {"PolicyOfLocalhostOnly", [](F& f) { f.managers.policy = Read({Text("1", "127.0.0.1")}); },
     StepId::kManagers, kFailed, "set by a policy", "group policy"},
    {"NoManagers", [](F& f) { f.managers.service = Read({}); }, StepId::kManagers, kOk,
     "every host", ""},
    {"ManagersUnreadable", [](F& f) { f.managers.service = Unreadable(); }, StepId::kManagers,
     kSkipped, "access is denied", ""},
    {"ManagersAreListed", [](F&) {}, StepId::kManagers, kOk, "localhost, 198.51.100.1", ""},
    {"NoDestination", [](F& f) { f.trapDestinations.service = {}; }, StepId::kTraps, kFailed,
     "no trap destination", "--no-traps"},
    {"DestinationsUnreadable", [](F& f) { f.trapDestinations.service = Unreadable(); },
     StepId::kTraps, kSkipped, "access is denied", ""},
    {"DestinationsOfAPolicy",
     [](F& f) { f.trapDestinations.policy = Read({Text("plant", "10.0.0.9")}); }, StepId::kTraps,
     kOk, "10.0.0.9 (set by a policy", ""},
    {"FirewallWithoutRule", [](F& f) { f.firewall.rules.clear(); }, StepId::kFirewall, kFailed,
     "Domain closed, no rule opens it", "netsh advfirewall"},
    {"FirewallRuleLimited", [](F& f) { f.firewall.rules[0] += "RA4=LocalSubnet|"; },
     StepId::kFirewall, kFailed, "Domain open for LocalSubnet only", "widen the rule"},
    {"FirewallRuleLimitedToAddresses",
     [](F& f) { f.firewall.rules[0] += "RA4=LocalSubnet|RA4=198.51.100.1|"; }, StepId::kFirewall,
     kOk, "Domain open for LocalSubnet, 198.51.100.1.", ""},
    {"FirewallRuleLimitedInOneOfTwoNetworks",
     [](F& f) {
       f.firewall.rules[0] += "Profile=Domain|";
       f.firewall.rules.push_back(std::string(kRule) + "Profile=Private|RA4=LocalSubnet|");
       f.firewall.profiles[1].active = true;
     },
     StepId::kFirewall, kFailed, "Domain open, Private open for LocalSubnet only",
     "widen the rule"},
    {"FirewallRuleLimitedProfileUnknown",
     [](F& f) {
       for (FirewallProfile& profile : f.firewall.profiles) profile.active.reset();
       f.firewall.rules[0] += "RA4=LocalSubnet|";
     },
     StepId::kFirewall, kFailed, "Public open for LocalSubnet only", "widen the rule"},
    {"FirewallBlocks",
     [](F& f) { f.firewall.rules.emplace_back("v2.30|Action=Block|Active=TRUE|Dir=In|"); },
     StepId::kFirewall, kFailed, "closed by a rule", "netsh advfirewall"},
    {"FirewallPolicyIgnoresTheRule", [](F& f) { f.firewall.profiles[0].mergesLocalRules = false; },
     StepId::kFirewall, kFailed, "Domain closed, no rule opens it", "to the group policy"},
    {"FirewallOff",
     [](F& f) {
       f.firewall.rules.clear();
       f.firewall.profiles[0].on = false;
     },
     StepId::kFirewall, kOk, "Domain open, the firewall is off", ""},
    {"FirewallProfileUnknown",
     [](F& f) {
       for (FirewallProfile& profile : f.firewall.profiles) profile.active.reset();
       f.firewall.rules[0] += "Profile=Public|";
     },
     StepId::kFirewall, kOk, "Public open. The profile in use could not be read", ""},
    {"FirewallNoNetwork", [](F& f) { f.firewall.profiles[0].active = false; }, StepId::kFirewall,
     kSkipped, "No network is connected", ""},
    {"FirewallUnreadable", [](F& f) { f.firewall.whyUnknown = "Windows error 2"; },
     StepId::kFirewall, kSkipped, "Windows error 2", ""},
};
INSTANTIATE_TEST_SUITE_P(Settings, BrokenServer, testing::ValuesIn(kSettingRows),
                         [](const auto& row) { return row.param.name; });

const Row kLinkRows[] = {
    {"NoListener", [](F& f) { f.link.listeners.clear(); }, StepId::kPort, kFailed,
     "No program listens on TCP port 16969", "start the Corvane software"},
    {"ListenerElsewhere", [](F& f) { f.link.listeners[0].address = "192.0.2.7"; }, StepId::kPort,
     kFailed, "corvane.exe (process 800) listens on TCP port 16969 at 192.0.2.7",
     "127.0.0.1 or 0.0.0.0"},
    {"ListenerOnAllAddresses", [](F& f) { f.link.listeners[0].address = "0.0.0.0"; }, StepId::kPort,
     kOk, "at 0.0.0.0", ""},
    {"OneOfTwoListenersIsEnough",
     [](F& f) {
       f.link.listeners.insert(f.link.listeners.begin(), {"::1", 7, "other.exe"});
     },
     StepId::kPort, kOk, "corvane.exe (process 800)", ""},
    {"ListenerOfIPv6Only",
     [](F& f) {
       f.link.listeners[0].address = "::";
       f.link.connections.clear();
     },
     StepId::kPort, kFailed, "at ::", "127.0.0.1 or 0.0.0.0"},
    {"ListenerAtAnyIPv6WithoutService",
     [](F& f) {
       f.link.listeners[0].address = "::";
       f.link.connections.clear();
       f.service.state = State::kStopped;
     },
     StepId::kPort, kSkipped, "is not known while the service does not run", ""},
    {"ListenerElsewhereWithoutService",
     [](F& f) {
       f.link.listeners[0].address = "::1";
       f.link.connections.clear();
       f.service.state = State::kStopped;
     },
     StepId::kPort, kFailed, "at ::1", "127.0.0.1 or 0.0.0.0"},
    {"ListenerOfBothFamilies", [](F& f) { f.link.listeners[0].address = "::"; }, StepId::kPort, kOk,
     "at ::", ""},
    {"SocketsUnknown", [](F& f) { f.link.whyUnknown = "Windows error 50"; }, StepId::kPort,
     kSkipped, "Windows error 50", ""},
    {"NoConnection", [](F& f) { f.link.connections.clear(); }, StepId::kLink, kFailed,
     "The service is not connected", "restart the service"},
    {"NoConnectionWithoutListener",
     [](F& f) {
       f.link.connections.clear();
       f.link.listeners.clear();
     },
     StepId::kLink, kFailed, "because no program listens", "start the Corvane software"},
    {"ConnectionOfAnotherProgram",
     [](F& f) {
       f.link.connections = {{"127.0.0.1", 77, "probe.exe"}};
     },
     StepId::kLink, kFailed, "probe.exe (process 77) is connected to the port, but not the service",
     "restart the service"},
    {"ConnectionOfAnUnknownProcess", [](F& f) { f.service.processId = 0; }, StepId::kLink, kSkipped,
     "The process of the service is not known", ""},
    {"ConnectionWithoutService", [](F& f) { f.service.state = State::kStopped; }, StepId::kLink,
     kSkipped, "The service does not run", ""},
    {"NoValuesForOverAMinute",
     [](F& f) {
       UseLog(f,
              "06:00:05.668: Info: Extension agent started!\n"
              "11:58:59.000: Info: Connection to Corvane process established..\n");
     },
     StepId::kLink, kFailed, "connected since 2026-11-21 11:58:59, but a full set of values never",
     "restart the Corvane software"},
    {"NoValuesForAMinute",
     [](F& f) {
       UseLog(f,
              "06:00:05.668: Info: Extension agent started!\n"
              "11:59:00.000: Info: Connection to Corvane process established..\n");
     },
     StepId::kLink, kOk, "The service is connected", ""},
    {"NoLogFolder", [](F& f) { f.logFolder.exists = false; }, StepId::kFolder, kFailed,
     "There is no folder", "restart the service"},
    {"LogFolderForbidden",
     [](F& f) {
       f.logFolder.access.entries = {{true, 0x1200A9, "S-1-5-18"}};
     },
     StepId::kFolder, kFailed, "may not write", "right to write"},
    {"LogFolderUnreadable", [](F& f) { f.logFolder.whyUnknown = "access is denied"; },
     StepId::kFolder, kSkipped, "access is denied", ""},
    {"LogFolderRightsUnreadable", [](F& f) { f.logFolder.access.whyUnknown = "access is denied"; },
     StepId::kFolder, kSkipped, "access is denied", ""},
    {"LogFolderAccountUnknown", [](F& f) { f.accountSids.clear(); }, StepId::kFolder, kSkipped,
     "account of the service is not known", ""},
    {"NoLog", [](F& f) { f.log.files = 0; }, StepId::kLog, kFailed, "There is no log",
     "restart the service"},
    {"LogUnreadable", [](F& f) { f.log.whyUnknown = "access is denied"; }, StepId::kLog, kSkipped,
     "access is denied", ""},
    {"NoLogOfToday", [](F& f) { f.log.today = "2026-11-22"; }, StepId::kLog, kOk, "none from today",
     ""},
    {"AgentEnded",
     [](F& f) { UseLog(f, "23:30:00.716: Info: Terminating SNMP extension agent..\n"); },
     StepId::kLog, kFailed, "ended at 2026-11-21 23:30:00", "restart the service"},
    {"AgentStartedBeforeTheService", [](F& f) { f.service.startedAt = "2026-11-21 06:00:06"; },
     StepId::kLog, kFailed, "before the service's present start", "restart the service"},
    {"LogWithoutStart", [](F& f) { UseLog(f, "06:00:05.668: Info: Update streams\n"); },
     StepId::kLog, kSkipped, "neither a start nor an end", ""},
    {"LogWithError",
     [](F& f) {
       UseLog(f,
              "06:00:05.668: Info: Extension agent started!\n"
              "13:00:37.080: Error: DecodeStruct_Streams: m_Count expected to be less than 1024. "
              "It is 2000.\n");
     },
     StepId::kLog, kFailed, "1 error line(s)", "dropped one message"},
    {"LogOfAStoppedService", [](F& f) { f.service.state = State::kStopped; }, StepId::kLog,
     kSkipped, "The service does not run", ""},
    {"AnswerNotAsked",
     [](F& f) {
       f.answer.outcome = Outcome::kNotAsked;
       f.communities.service = Unreadable();
     },
     StepId::kAnswer, kSkipped, "use --community", ""},
    {"AnswerWithoutCommunity",
     [](F& f) {
       f.answer.outcome = Outcome::kNotAsked;
       f.communities.service = {};
     },
     StepId::kAnswer, kSkipped, "no community that may read", ""},
    {"AnswerNotSent",
     [](F& f) {
       f.answer.outcome = Outcome::kNotSent;
       f.answer.fault = "Windows error 10050";
     },
     StepId::kAnswer, kSkipped, "Windows error 10050", ""},
    {"AnswerRefused", [](F& f) { f.answer.outcome = Outcome::kRefused; }, StepId::kAnswer, kFailed,
     "No program listens at 127.0.0.1, UDP port 161", "start the service"},
    {"AnswerNotUnderstood", [](F& f) { f.answer.outcome = Outcome::kNotUnderstood; },
     StepId::kAnswer, kFailed, "is not an answer", "findstr :161"},
    {"AnswerSilent", [](F& f) { f.answer.outcome = Outcome::kSilent; }, StepId::kAnswer, kFailed,
     "the service hangs", "restart the service"},
    {"AnswerSilentManagersUnreadable",
     [](F& f) {
       f.answer.outcome = Outcome::kSilent;
       f.managers.service = Unreadable();
     },
     StepId::kAnswer, kFailed, "not a permitted manager (the list cannot be read)",
     "as an administrator"},
    {"AnswerSilentForThisMachine",
     [](F& f) {
       f.answer.outcome = Outcome::kSilent;
       f.managers.service = Read({Text("1", "198.51.100.1")});
     },
     StepId::kAnswer, kSkipped, "This machine is not a permitted manager", ""},
    {"AnswerWithoutAgent",
     [](F& f) {
       for (SnmpBinding& binding : f.answer.response.bindings) {
         binding.kind = SnmpBinding::Kind::kMissing;
       }
     },
     StepId::kAnswer, kFailed, "has none of the agent's variables", "restart the service"},
    {"AnswerNoSuchName", [](F& f) { f.answer.response.errorStatus = 2; }, StepId::kAnswer, kFailed,
     "(error status 2): it has not loaded the agent", "restart the service"},
    {"AnswerGeneralError", [](F& f) { f.answer.response.errorStatus = 5; }, StepId::kAnswer,
     kFailed, "answers with the error status 5.", "restart the service"},
    {"AnswerCut", [](F& f) { f.answer.response.bindings.pop_back(); }, StepId::kAnswer, kFailed,
     "lacks corvaneAudioSourcesSilence", "restart the service"},
    {"AnswerOfAnotherType",
     [](F& f) { f.answer.response.bindings[1].kind = SnmpBinding::Kind::kNumber; }, StepId::kAnswer,
     kFailed, "lacks corvaneProductName", "restart the service"},
    {"AnswerWithLinkDown", [](F& f) { f.answer.response.bindings[0].number = 1; }, StepId::kAnswer,
     kOk, "the values are old", ""},
};
INSTANTIATE_TEST_SUITE_P(Link, BrokenServer, testing::ValuesIn(kLinkRows),
                         [](const auto& row) { return row.param.name; });

TEST(Verdicts, FullPathHasADriveOrAServer) {
  for (const char* path : {R"(C:\)", R"(z:\SNMPd.dll)", R"(\\server\share\SNMPd.dll)"}) {
    EXPECT_TRUE(IsFullPath(path)) << path;
  }
  for (const char* path : {"", "C", "C:", "C:SNMPd.dll", "C:/SNMPd.dll", R"(\SNMPd.dll)",
                           "SNMPd.dll", R"(agent\SNMPd.dll)", R"(1:\SNMPd.dll)", R"(\)"}) {
    EXPECT_FALSE(IsFullPath(path)) << path;
  }
}

TEST(Verdicts, VariablesAreShownByName) {
  const auto verdicts = Judge(HealthyFacts(), {});
  const auto& details = At(verdicts, StepId::kAnswer).details;
  ASSERT_EQ(details.size(), 8u);
  EXPECT_EQ(details[0], "corvaneLinkStatus = 0 (up)");
  EXPECT_EQ(details[1], "corvaneProductName = \"Corvane\"");
  EXPECT_EQ(details[7], "corvaneAudioSourcesSilence = 0");
}

TEST(Verdicts, LastLinesOfTheLogAreShown) {
  const auto verdicts = Judge(HealthyFacts(), {});
  const auto& details = At(verdicts, StepId::kLog).details;
  ASSERT_EQ(details.size(), 3u);
  EXPECT_EQ(details[2], "2026-11-21 06:00:20.684: Info: SNMP variables successfully updated");
}

TEST(Verdicts, NamedManagerMustBePermitted) {
  Options options;
  options.manager = "198.51.100.1";
  EXPECT_EQ(At(Judge(HealthyFacts(), options), StepId::kManagers).status, Status::kOk);
  options.manager = "198.51.100.2";
  const Verdict verdict = At(Judge(HealthyFacts(), options), StepId::kManagers);
  EXPECT_EQ(verdict.status, Status::kFailed);
  EXPECT_THAT(verdict.action, HasSubstr("add 198.51.100.2"));
}

TEST(Verdicts, ThisMachineMayBeTheManager) {
  Facts facts = HealthyFacts();
  facts.managers.service = Read({Text("1", "localhost")});
  Options options;
  options.manager = "localhost";
  EXPECT_EQ(At(Judge(facts, options), StepId::kManagers).status, Status::kOk);
}

TEST(Verdicts, NoTrapsSkipsTheDestinationsAndTheirEvents) {
  Facts facts = HealthyFacts();
  facts.trapDestinations.service = {};
  facts.events = {{true, R"(event 1500: SYSTEM\...\Parameters\TrapConfiguration)"}};
  Options options;
  options.noTraps = true;
  const auto verdicts = Judge(facts, options);
  EXPECT_EQ(At(verdicts, StepId::kTraps).status, Status::kSkipped);
  EXPECT_EQ(At(verdicts, StepId::kEvents).status, Status::kOk);
}

TEST(Verdicts, EventsAreFilteredBeforeTheyAreCut) {
  Facts facts = HealthyFacts();
  facts.events.assign(6, {true, "event 1500: TrapConfiguration"});
  facts.events.insert(facts.events.end(), 6, {false, "event 1001: x"});
  for (const char* text : {"1", "2", "3", "4", "5", "6"}) facts.events.push_back({true, text});
  Options options;
  options.noTraps = true;
  const Verdict verdict = At(Judge(facts, options), StepId::kEvents);
  EXPECT_EQ(verdict.status, Status::kFailed);
  EXPECT_THAT(verdict.text, HasSubstr("6 error(s)"));
  EXPECT_THAT(verdict.details, testing::ElementsAre("1", "2", "3", "4", "5"));
}

TEST(Verdicts, UnknownCommunityOfAnOptionIsReported) {
  Facts facts = HealthyFacts();
  facts.answer.outcome = Outcome::kSilent;
  Options options;
  options.community = "Monitor";  // communities are case-sensitive
  const Verdict verdict = At(Judge(facts, options), StepId::kAnswer);
  EXPECT_EQ(verdict.status, Status::kFailed);
  EXPECT_THAT(verdict.text, HasSubstr("does not accept the community"));
  options.community = "monitor";
  EXPECT_THAT(At(Judge(facts, options), StepId::kAnswer).text, HasSubstr("the service hangs"));
}

TEST(Verdicts, ReadableCommunityIsTheFirstThatMayRead) {
  SettingFacts communities;
  EXPECT_EQ(ReadableCommunity(communities), std::nullopt);
  communities.service = Read({Number("none", 1), Number("notify", 2), Number("all", 16)});
  EXPECT_EQ(ReadableCommunity(communities), "all");
  communities.policy = Read({Text("1", "policy")});
  EXPECT_EQ(ReadableCommunity(communities), "policy");
}

TEST(Access, FirstEntryThatDecidesHolds) {
  AccessFacts access;
  EXPECT_FALSE(HasRights(access, {"a"}, 2));
  access.entries = {{true, 1, "a"}, {false, 2, "b"}, {true, 3, "a"}};
  EXPECT_TRUE(HasRights(access, {"a"}, 3));
  EXPECT_FALSE(HasRights(access, {"a", "b"}, 2));
  EXPECT_TRUE(HasRights(access, {"a", "b"}, 1));
  EXPECT_FALSE(HasRights(access, {"c"}, 1));
  EXPECT_FALSE(HasRights(access, {"a"}, 4));
  access.open = true;
  EXPECT_TRUE(HasRights(access, {"c"}, 4));
}

TEST(Access, GroupsOfWindowsOwnAccountsAreKnown) {
  EXPECT_THAT(SidsOf("LocalSystem"), testing::Contains("S-1-5-32-544"));
  EXPECT_THAT(SidsOf(R"(NT AUTHORITY\SYSTEM)"), testing::Contains("S-1-5-18"));
  EXPECT_THAT(SidsOf(R"(NT AUTHORITY\LocalService)"), testing::Contains("S-1-5-19"));
  EXPECT_THAT(SidsOf(R"(NT AUTHORITY\NetworkService)"), testing::Contains("S-1-5-20"));
  EXPECT_THAT(SidsOf(R"(.\snmp)"), testing::IsEmpty());
}

}  // namespace
}  // namespace Check::Tests
