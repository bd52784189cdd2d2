#include "host/Options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Host::Options;
using Host::ParsedOptions;
using Host::ParseOptions;

TEST(HostOptions, ModuleAloneTakesTheDefaults) {
  const ParsedOptions parsed = ParseOptions({"SNMPd.so"});
  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.options.module, "SNMPd.so");
  EXPECT_EQ(parsed.options.listen, std::vector<std::string>{"udp:127.0.0.1:1161"});
  EXPECT_EQ(parsed.options.communities, std::vector<std::string>{"public"});
  EXPECT_TRUE(parsed.options.trapSinks.empty());
  EXPECT_EQ(parsed.options.agentxSocket, "");
  EXPECT_EQ(parsed.options.user, "");
}

TEST(HostOptions, EveryOptionIsTaken) {
  const Options options =
      ParseOptions({"--listen", "udp:1.2.3.4:5", "--listen", "unix:/s", "--community", "c",
                    "--community", "d", "--trap-sink", "a:1", "--trap-sink", "b:2", "--user",
                    "fred:secret:secret", "m"})
          .options;
  EXPECT_EQ(options.listen, (std::vector<std::string>{"udp:1.2.3.4:5", "unix:/s"}));
  EXPECT_EQ(options.communities, (std::vector<std::string>{"c", "d"}));
  EXPECT_EQ(options.trapSinks, (std::vector<std::string>{"a:1", "b:2"}));
  EXPECT_EQ(options.agentxSocket, "");
  EXPECT_EQ(options.user, "fred");
  EXPECT_EQ(options.passPhrase, "secret:secret");
  EXPECT_EQ(options.module, "m");
}

TEST(HostOptions, SubagentHasNoAddressAndNoCommunity) {
  const ParsedOptions parsed = ParseOptions({"--agentx", "/s", "m"});
  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.options.agentxSocket, "/s");
  EXPECT_TRUE(parsed.options.listen.empty());
  EXPECT_TRUE(parsed.options.communities.empty());
}

TEST(HostOptions, RegisteredReplacesTheModule) {
  const ParsedOptions parsed = ParseOptions({"--registered"});
  EXPECT_EQ(parsed.error, "");
  EXPECT_TRUE(parsed.options.registered);
  EXPECT_EQ(parsed.options.module, "");
  EXPECT_FALSE(ParseOptions({"m"}).options.registered);
}

TEST(HostOptions, HelpAndVersionNeedNoModule) {
  EXPECT_TRUE(ParseOptions({"--help"}).options.help);
  EXPECT_EQ(ParseOptions({"--help"}).error, "");
  EXPECT_TRUE(ParseOptions({"--version"}).options.version);
  EXPECT_EQ(ParseOptions({"--version"}).error, "");
}

struct BadCommandLine {
  const char* name;
  std::vector<std::string> arguments;
  const char* error;
};

class HostOptionsRefused : public testing::TestWithParam<BadCommandLine> {};

TEST_P(HostOptionsRefused, WithTheArgumentNamed) {
  EXPECT_EQ(ParseOptions(GetParam().arguments).error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HostOptionsRefused,
    testing::Values(
        BadCommandLine{"NoModule", {}, "no module: name SNMPd.so or SNMPd.dll"},
        BadCommandLine{"TwoModules", {"a", "b"}, "only one module is allowed: 'a' or 'b'"},
        BadCommandLine{"RegisteredAndAModule",
                       {"--registered", "m"},
                       "--registered finds the module itself: leave out 'm'"},
        BadCommandLine{"EmptyModule", {""}, "the module's path is empty"},
        BadCommandLine{"UnknownOption", {"--port", "1", "m"}, "unknown option '--port'"},
        BadCommandLine{"MissingValue", {"m", "--listen"}, "--listen needs a value"},
        BadCommandLine{"EmptyValue", {"m", "--listen", ""}, "the value of --listen is empty"},
        BadCommandLine{"CommunityOfTwoWords",
                       {"m", "--community", "a b"},
                       "--community takes no blanks, quotes, '#' or '\\'"},
        BadCommandLine{
            "UserWithoutPassPhrase", {"m", "--user", "fred"}, "--user takes NAME:PASSPHRASE"},
        BadCommandLine{
            "UserWithoutName", {"m", "--user", ":secretsecret"}, "--user takes NAME:PASSPHRASE"},
        BadCommandLine{"UserWithABlank",
                       {"m", "--user", "fr ed:secretsecret"},
                       "--user takes no blanks, quotes, '#' or '\\'"},
        BadCommandLine{"SevenCharactersOfPassPhrase",
                       {"m", "--user", "fred:1234567"},
                       "--user takes a pass phrase of at least 8 characters"},
        BadCommandLine{"TwoUsers",
                       {"m", "--user", "fred:12345678", "--user", "anna:12345678"},
                       "--user may be given only once"},
        BadCommandLine{"TwoMasters",
                       {"m", "--agentx", "/a", "--agentx", "/b"},
                       "--agentx may be given only once"},
        BadCommandLine{"SubagentThatListens",
                       {"m", "--agentx", "/s", "--listen", "udp:1.2.3.4:5"},
                       "with --agentx, the settings of snmpd hold: leave out --listen"},
        BadCommandLine{"SubagentWithACommunity",
                       {"m", "--agentx", "/s", "--community", "c"},
                       "with --agentx, the settings of snmpd hold: leave out --community"},
        BadCommandLine{"SubagentWithAUser",
                       {"m", "--agentx", "/s", "--user", "fred:12345678"},
                       "with --agentx, the settings of snmpd hold: leave out --user"},
        BadCommandLine{"SubagentWithATrapSink",
                       {"m", "--trap-sink", "a:1", "--agentx", "/s"},
                       "with --agentx, the settings of snmpd hold: leave out --trap-sink"}),
    [](const auto& row) { return row.param.name; });

TEST(HostOptions, EightCharactersOfPassPhraseAreEnough) {
  EXPECT_EQ(ParseOptions({"m", "--user", "fred:12345678"}).error, "");
}

TEST(HostOptions, HelpNamesEveryOption) {
  const std::string help = Host::HelpText();
  for (const char* option : {"--listen", "--community", "--user", "--trap-sink", "--agentx",
                             "--registered", "--help", "--version", "MODULE"}) {
    EXPECT_NE(help.find(option), std::string::npos) << option;
  }
}

}  // namespace
