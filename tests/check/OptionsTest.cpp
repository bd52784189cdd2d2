#include "check/Options.h"

#include <gtest/gtest.h>

#include <string>

namespace Check {
namespace {

TEST(CheckOptions, NoneTakesTheDefaults) {
  const ParsedOptions parsed = ParseOptions({});
  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.options.community, "");
  EXPECT_EQ(parsed.options.manager, "");
  EXPECT_EQ(parsed.options.port, 161);
  EXPECT_FALSE(parsed.options.json || parsed.options.steps || parsed.options.noTraps ||
               parsed.options.help || parsed.options.version);
}

TEST(CheckOptions, EveryOptionIsTaken) {
  const Options options = ParseOptions({"--community", "c", "--port", "1161", "--manager", "m",
                                        "--no-traps", "--json", "--steps", "--help", "--version"})
                              .options;
  EXPECT_EQ(options.community, "c");
  EXPECT_EQ(options.manager, "m");
  EXPECT_EQ(options.port, 1161);
  EXPECT_TRUE(options.json && options.steps && options.noTraps && options.help && options.version);
}

TEST(CheckOptions, PortIsFrom1To65535) {
  EXPECT_EQ(ParseOptions({"--port", "1"}).options.port, 1);
  EXPECT_EQ(ParseOptions({"--port", "65535"}).options.port, 65535);
  for (const char* port : {"0", "65536", "", "x", "1x", "-1", "+1", " 1"}) {
    EXPECT_EQ(ParseOptions({"--port", port}).error, "--port takes a number from 1 to 65535")
        << port;
  }
}

TEST(CheckOptions, CommunityHasAtMost255Bytes) {
  EXPECT_EQ(ParseOptions({"--community", std::string(255, 'c')}).error, "");
  EXPECT_EQ(ParseOptions({"--community", std::string(256, 'c')}).error,
            "--community takes at most 255 bytes");
}

TEST(CheckOptions, WrongArgumentsAreNamed) {
  EXPECT_EQ(ParseOptions({"--nonsense"}).error, "unknown argument '--nonsense'");
  EXPECT_EQ(ParseOptions({"file"}).error, "unknown argument 'file'");
  EXPECT_EQ(ParseOptions({"--community"}).error, "--community needs a value");
  EXPECT_EQ(ParseOptions({"--community", ""}).error, "--community takes a value that is not empty");
  EXPECT_EQ(ParseOptions({"--manager", ""}).error, "--manager takes a value that is not empty");
}

TEST(CheckOptions, HelpNamesEveryOptionAndKey) {
  const std::string help = HelpText();
  for (const char* word :
       {"--community NAME", "--port NUMBER", "--manager ADDRESS", "--no-traps", "--json", "--steps",
        "--version", "--help", "agent_version", "failed", "skipped", "variables", "Exit status"}) {
    EXPECT_NE(help.find(word), std::string::npos) << word;
  }
}

}  // namespace
}  // namespace Check
