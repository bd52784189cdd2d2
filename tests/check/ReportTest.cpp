#include "check/Report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/check/HealthyFacts.h"

namespace Check::Tests {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::vector<Verdict> kThree = {
    {StepId::kService, Status::kOk, "It runs.", "", {}},
    {StepId::kCommunities, Status::kFailed, "None.", "add one.", {"first", "second"}},
    {StepId::kFirewall, Status::kSkipped, "Access is denied.", "", {}},
};

TEST(CheckReport, OneLineForEachStep) {
  EXPECT_EQ(TextReport(kThree),
            "[ok]       1 service     It runs.\n"
            "[failed]   8 communities None. To do: add one.\n"
            "             first\n"
            "             second\n"
            "[skipped] 16 firewall    Access is denied.\n"
            "1 ok, 1 failed, 1 skipped\n");
}

TEST(CheckReport, ControlCharactersDoNotReachTheTerminal) {
  const std::vector<Verdict> verdicts = {
      {StepId::kLog, Status::kFailed, "a\x1B[2Jb", "c\nd", {"e\x7F\tf"}}};
  EXPECT_EQ(TextReport(verdicts),
            "[failed]  14 log         a [2Jb To do: c d\n             e  f\n"
            "0 ok, 1 failed, 0 skipped\n");
}

TEST(CheckReport, CommunityIsNeverPrinted) {
  Facts facts = HealthyFacts();
  facts.communities.service = Read({Number("s3cret", 4)});
  facts.trapDestinations.service = Read({Text("s3cret", "198.51.100.1")});
  facts.answer.outcome = AnswerFacts::Outcome::kSilent;
  facts.events = {
      {true, R"(event 1500: SYSTEM\x\Parameters\TrapConfiguration\two words s3cret)"},
      {true, R"(event 1500: TrapConfiguration, SYSTEM\x\parameters\trapconfiguration\s3cret)"}};
  Options options;
  for (const char* community : {"", "s3cret", "s3cret of an option"}) {
    options.community = community;
    const auto verdicts = Judge(facts, options);
    EXPECT_THAT(TextReport(verdicts), HasSubstr(R"(TrapConfiguration\...)"));
    EXPECT_THAT(TextReport(verdicts), Not(HasSubstr("two words")));
    EXPECT_THAT(TextReport(verdicts), Not(HasSubstr("s3cret")));
    EXPECT_THAT(JsonReport(verdicts, facts), Not(HasSubstr("two words")));
    EXPECT_THAT(JsonReport(verdicts, facts), Not(HasSubstr("s3cret")));
  }
}

TEST(CheckReport, StatusIsOneOnlyIfAStepFailed) {
  EXPECT_EQ(ExitStatus(kThree), 1);
  EXPECT_EQ(ExitStatus({kThree[0], kThree[2]}), 0);
}

TEST(CheckReport, JsonHoldsEveryStepAndVariable) {
  Facts facts = HealthyFacts();
  facts.answer.response.bindings.resize(2);
  facts.dll.image.version = "1.2.3.4";
  const std::string prefix = DottedText(RequestedVariables()[0]);
  EXPECT_EQ(JsonReport(kThree, facts),
            "{\"version\":\"" CORVANE_VERSION_TEXT
            "\",\"agent_version\":\"1.2.3.4\",\"failed\":1,\"skipped\":1,\"steps\":["
            "{\"number\":1,\"name\":\"service\",\"status\":\"ok\",\"text\":\"It runs.\","
            "\"action\":\"\",\"details\":[]},"
            "{\"number\":8,\"name\":\"communities\",\"status\":\"failed\",\"text\":\"None.\","
            "\"action\":\"add one.\",\"details\":[\"first\",\"second\"]},"
            "{\"number\":16,\"name\":\"firewall\",\"status\":\"skipped\",\"text\":\"Access is "
            "denied.\",\"action\":\"\",\"details\":[]}],\"variables\":["
            "{\"name\":\"corvaneLinkStatus\",\"oid\":\"" +
                prefix +
                "\",\"value\":0},"
                "{\"name\":\"corvaneProductName\",\"oid\":\"" +
                DottedText(RequestedVariables()[1]) + "\",\"value\":\"Corvane\"}]}\n");
}

TEST(CheckReport, JsonLeavesOutWhatIsNotAVariable) {
  Facts facts = HealthyFacts();
  facts.answer.response.bindings.resize(2);
  facts.answer.response.bindings[0].kind = SnmpBinding::Kind::kMissing;
  facts.answer.response.bindings[1].oid = {1, 3};
  EXPECT_THAT(JsonReport({}, facts), HasSubstr("\"steps\":[],\"variables\":[]}"));
}

TEST(CheckReport, QuotedTextsAreEscaped) {
  EXPECT_EQ(QuotedJson("a\"b\\c/d\n\x01"), R"("a\"b\\c/d\u000a\u0001")");
  EXPECT_EQ(QuotedJson("Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x98\x80"),
            "\"Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x98\x80\"");
  EXPECT_EQ(QuotedJson(std::string_view("\0", 1)), R"("\u0000")");
}

TEST(CheckReport, BytesThatAreNotUtf8AreReplaced) {
  EXPECT_EQ(QuotedJson("\xFF"), R"("\ufffd")");
  EXPECT_EQ(QuotedJson("\xC3"), R"("\ufffd")");  // cut
  EXPECT_EQ(QuotedJson("\xC3("), R"("\ufffd(")");
  EXPECT_EQ(QuotedJson("\xC0\x80"), R"("\ufffd\ufffd")");  // overlong
  EXPECT_EQ(QuotedJson("\xE0\x9F\xBF"), R"("\ufffd\ufffd\ufffd")");
  EXPECT_EQ(QuotedJson("\xED\xA0\x80"), R"("\ufffd\ufffd\ufffd")");  // half of a pair
  EXPECT_EQ(QuotedJson("\xF0\x8F\xBF\xBF"), R"("\ufffd\ufffd\ufffd\ufffd")");
  EXPECT_EQ(QuotedJson("\xF4\x90\x80\x80"), R"("\ufffd\ufffd\ufffd\ufffd")");
}

TEST(CheckReport, VersionTellsTheInstalledDll) {
  Facts facts = HealthyFacts();
  facts.dll.image.version = "1.2.3.4";
  EXPECT_EQ(VersionText(facts), "corvane-check " CORVANE_VERSION_TEXT "\nSNMPd.dll 1.2.3.4 (" +
                                    std::string(kDll) + ")\n");
  facts.dll.image.version = "";
  EXPECT_THAT(VersionText(facts), HasSubstr("SNMPd.dll of unknown version ("));
  facts.registration.agents.clear();
  EXPECT_THAT(VersionText(facts), HasSubstr("SNMPd.dll: not registered"));
}

}  // namespace
}  // namespace Check::Tests
