#include "check/FirewallRules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Check {
namespace {

struct Row {
  const char* name;
  std::vector<std::string> rules;
  Passage passage;
  const char* limits = "";
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

FirewallProfile Profile(bool on, bool allowsByDefault) {
  return {"Private", on, allowsByDefault, true, {}};
}

class FirewallRules : public testing::TestWithParam<Row> {};

TEST_P(FirewallRules, LetRequestsPass) {
  const Row& row = GetParam();
  std::string limits = "left over";
  EXPECT_EQ(PassageOf({row.rules, {}, {}, {}}, Profile(true, false), limits), row.passage);
  EXPECT_EQ(limits, row.limits);
}

constexpr char kAllow[] = "v2.30|Action=Allow|Active=TRUE|Dir=In|";
std::string Allow(const std::string& fields) {
  return kAllow + fields;
}

const Row kRows[] = {
    {"NoRule", {}, Passage::kClosed},
    {"EverythingMayIn", {kAllow}, Passage::kOpen},
    {"Port161", {Allow("Protocol=17|LPort=161|")}, Passage::kOpen},
    {"Port160", {Allow("Protocol=17|LPort=160|")}, Passage::kClosed},
    {"Port162", {Allow("Protocol=17|LPort=162|")}, Passage::kClosed},
    {"Port1610", {Allow("Protocol=17|LPort=1610|")}, Passage::kClosed},
    {"PortIsOneOfSeveral", {Allow("LPort=160|LPort=161|")}, Passage::kOpen},
    {"PortIsInAList", {Allow("LPort=53,160-162|")}, Passage::kOpen},
    {"PortIsTheEndOfARange", {Allow("LPort2_10=100-161|")}, Passage::kOpen},
    {"PortIsTheStartOfARange", {Allow("LPort2_10=161-200|")}, Passage::kOpen},
    {"PortIsAboveTheRange", {Allow("LPort2_10=100-160|")}, Passage::kClosed},
    {"PortIsAWord", {Allow("LPort=RPC|")}, Passage::kClosed},
    {"Tcp", {Allow("Protocol=6|LPort=161|")}, Passage::kClosed},
    {"AnyProtocol", {Allow("Protocol=256|")}, Passage::kOpen},
    {"NotActive", {"v2.30|Action=Allow|Active=FALSE|Dir=In|"}, Passage::kClosed},
    {"Outbound", {"v2.30|Action=Allow|Active=TRUE|Dir=Out|"}, Passage::kClosed},
    {"OtherProfile", {Allow("Profile=Domain|Profile=Public|")}, Passage::kClosed},
    {"OneOfTheProfiles", {Allow("Profile=Domain|Profile=private|")}, Passage::kOpen},
    {"OtherProgram", {Allow("App=C:\\x\\notsnmp.exe|")}, Passage::kClosed},
    {"ServiceProgram", {Allow("App=%SystemRoot%\\System32\\SNMP.exe|")}, Passage::kOpen},
    {"OtherService", {Allow("Svc=SNMPTRAP|")}, Passage::kClosed},
    {"LocalSubnet",
     {Allow("RA4=LocalSubnet|RA6=LocalSubnet|")},
     Passage::kLocalSubnet,
     "LocalSubnet"},
    {"TwoAddresses",
     {Allow("RA4=10.0.0.1|RA4=10.0.0.2|")},
     Passage::kLimited,
     "10.0.0.1, 10.0.0.2"},
    {"LocalSubnetAndAnother",
     {Allow("RA4=localsubnet|RA6=LocalSubnet|RA4=10.0.0.1|")},
     Passage::kLimited,
     "localsubnet, LocalSubnet, 10.0.0.1"},
    {"EmptyAddress", {Allow("RA4=|")}, Passage::kOpen},
    {"EmptyAddressAndAnother", {Allow("RA4=|RA6=fd00::1|")}, Passage::kLimited, "fd00::1"},
    {"EmptyConditionOfAnotherKind", {Allow("LUOwn=|")}, Passage::kOpen},
    {"BlockOfAnEmptyAddress", {kAllow, "Action=Block|Active=TRUE|Dir=In|RA4=|"}, Passage::kBlocked},
    {"LimitedAndOpen", {Allow("RA4=LocalSubnet|"), kAllow}, Passage::kOpen},
    {"BlockWins", {kAllow, "Action=Block|Active=TRUE|Dir=In|"}, Passage::kBlocked},
    {"BlockOfSomeAddresses",
     {kAllow, "Action=Block|Active=TRUE|Dir=In|RA4=10.0.0.1|"},
     Passage::kOpen},
    {"FieldsThatRestrictNothing",
     {Allow("Name=n|Desc=d|EmbedCtxt=e|Edge=TRUE|Defer=App|")},
     Passage::kOpen},
    {"ProgramSystem", {Allow("App=System|")}, Passage::kClosed},
    {"AppPackage", {Allow("AppPkgId=S-1-15-2-1|")}, Passage::kClosed},
    {"User", {Allow("LUOwn=S-1-5-21-1|")}, Passage::kClosed},
    {"RemotePort", {Allow("RPort=500|")}, Passage::kClosed},
    {"LocalAddress", {Allow("LA4=192.0.2.1|")}, Passage::kClosed},
    {"InterfaceType", {Allow("IFType=Wireless|")}, Passage::kClosed},
    {"Security", {Allow("Security=Authenticate|")}, Passage::kClosed},
    {"UnknownField", {Allow("New=1|")}, Passage::kClosed},
    {"BlockWithAnotherCondition",
     {kAllow, "Action=Block|Active=TRUE|Dir=In|IFType=Wireless|"},
     Passage::kOpen},
    {"Nonsense", {"", "|||", "=|=", "Action"}, Passage::kClosed},
};
INSTANTIATE_TEST_SUITE_P(Rows, FirewallRules, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(FirewallProfiles, OffOrOpenByDefaultLetsRequestsPass) {
  std::string limits;
  EXPECT_EQ(PassageOf({}, Profile(false, false), limits), Passage::kOpen);
  EXPECT_EQ(PassageOf({}, Profile(true, true), limits), Passage::kOpen);
}

TEST(FirewallProfiles, PolicyMayIgnoreTheRulesOfTheMachine) {
  std::string limits;
  const FirewallFacts machine{{kAllow}, {}, {}, {}};
  const FirewallFacts policy{{}, {kAllow}, {}, {}};
  FirewallProfile profile = Profile(true, false);
  EXPECT_EQ(PassageOf(machine, profile, limits), Passage::kOpen);
  EXPECT_EQ(PassageOf(policy, profile, limits), Passage::kOpen);
  profile.mergesLocalRules = false;
  EXPECT_EQ(PassageOf(machine, profile, limits), Passage::kClosed);
  EXPECT_EQ(PassageOf(policy, profile, limits), Passage::kOpen);
}

}  // namespace
}  // namespace Check
