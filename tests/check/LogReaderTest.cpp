#include "check/LogReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Check {
namespace {

using testing::HasSubstr;

constexpr char kDay[] = "2026-11-21";

LogFindings Read(const char* text) {
  LogReader reader;
  reader.Feed(kDay, text);
  return reader.Findings();
}

TEST(LogReader, DayIsInTheNameOfTheFile) {
  EXPECT_EQ(DayOf("Log2026-11-21.log"), "2026-11-21");
  for (const char* other :
       {"", "Log.log", "Log1.log", "Log2026-11-2.log", "Log2026-11-211.log", "log2026-11-21.log",
        "Log2026-11-21.txt", "Log2026x11-21.log", "Log2026-11-21.log.bak"}) {
    EXPECT_EQ(DayOf(other), "") << other;
  }
}

TEST(LogReader, StateFollowsTheLines) {
  const LogFindings found = Read(
      "06:00:05.668: Info: Starting Corvane SNMP extension agent..\r\n"
      "06:00:05.669: Info: Extension agent started!\r\n"
      "06:00:06.000: Info: Connection to Corvane process established..\r\n"
      "06:00:20.684: Info: SNMP variables successfully updated\r\n");
  EXPECT_TRUE(found.runs);
  EXPECT_TRUE(found.linked);
  EXPECT_EQ(found.lastRun.Moment(), "2026-11-21 06:00:05");
  EXPECT_EQ(found.lastLink.Moment(), "2026-11-21 06:00:06");
  EXPECT_EQ(found.lastUpdate.Moment(), "2026-11-21 06:00:20");
  EXPECT_FALSE(found.lastError.IsThere());
}

TEST(LogReader, LossEndsTheLinkAndItsValues) {
  const LogFindings found = Read(
      "06:00:06.000: Info: Connection to Corvane process established..\n"
      "06:00:20.684: Info: SNMP variables successfully updated\n"
      "11:20:23.068: Warning: Lost connection to Corvane process!\n");
  EXPECT_FALSE(found.linked);
  EXPECT_TRUE(found.lastLink.IsThere());
  EXPECT_FALSE(found.lastUpdate.IsThere());
}

TEST(LogReader, StartForgetsTheErrorsBefore) {
  const LogFindings found = Read(
      "05:00:00.000: Error: Unable to open JsonSocket!\n"
      "05:00:01.000: Error: Unable to open JsonSocket!\n"
      "06:00:05.668: Info: Starting Corvane SNMP extension agent..\n"
      "06:00:05.669: Info: Extension agent started!\n");
  EXPECT_EQ(found.errors, 0u);
}

TEST(LogReader, ConnectionBeforeTheEndOfTheStartCounts) {
  const LogFindings found = Read(
      "06:00:05.668: Info: Starting Corvane SNMP extension agent..\n"
      "06:00:05.668: Info: Connection to Corvane process established..\n"
      "06:00:05.669: Info: Extension agent started!\n");
  EXPECT_TRUE(found.linked);
}

TEST(LogReader, EndIsRecognised) {
  EXPECT_FALSE(Read("23:30:00.716: Info: Terminating SNMP extension agent..\n").runs);
}

TEST(LogReader, LastLinesLeaveOutRequests) {
  const LogFindings found = Read(
      "06:00:00.000: Info: first\n"
      "06:00:01.000: Info: second\n"
      "06:00:02.000: Info: third\n"
      "06:00:03.000: Info: fourth\n"
      "06:01:00.792: Info: GetRequest(1.3.6.1.4.1.32473.333.2.1.0)\n"
      "06:01:00.792: Info: GetNextRequest(1.3.6.1)\n"
      "06:01:00.792: Info: GetStoredVar(StreamsErrors) = INT: 0\n");
  ASSERT_EQ(found.lastLines.size(), 3u);
  EXPECT_EQ(found.lastLines[0].text, "06:00:01.000: Info: second");
  EXPECT_EQ(found.lastLines[2].text, "06:00:03.000: Info: fourth");
}

TEST(LogReader, SecondFileContinuesTheFirst) {
  LogReader reader;
  reader.Feed("2026-11-20", "06:00:05.669: Info: Extension agent started!\n");
  reader.Feed("2026-11-21", "00:00:01.000: Error: Unable to open JsonSocket!\n");
  EXPECT_EQ(reader.Findings().lastRun.day, "2026-11-20");
  EXPECT_EQ(reader.Findings().lastError.day, "2026-11-21");
  EXPECT_EQ(reader.Findings().errors, 1u);
}

TEST(LogReader, AnyTextIsSafe) {
  for (const char* text : {"", "\n", "\r\n\r\n", "short\n", "06:00:05.668: ", "no line end",
                           "\xFF\xFE\x00", "06:00:05.668: Error: "}) {
    EXPECT_FALSE(Read(text).lastRun.IsThere()) << text;
  }
}

TEST(LogReader, StartOrEndIsFoundInAText) {
  EXPECT_TRUE(HasStartOrEnd("06:00:05.668: Info: Starting Corvane SNMP extension agent..\n"));
  EXPECT_TRUE(HasStartOrEnd("x\n23:30:00.716: Info: Terminating SNMP extension agent..\n"));
  EXPECT_FALSE(HasStartOrEnd("06:00:05.668: Info: SNMP variables successfully updated\n"));
}

TEST(LogMeanings, ErrorsOfTheGuideAreExplained) {
  const auto means = [](const char* line) { return MeaningOf(line); };
  for (const char* line :
       {"Error: DecodeStruct_Streams: m_Count expected to be less than 1024. It is 2000.",
        "Error: DecodeStruct_Streams: m_Count expected to be greater than 0. It is -1.",
        "Error: GetStrProperty: Property 'Name' exceeds the max length of 128. It is 129 bytes.",
        "Error: GetIntProperty: Property 'Count' not found",
        "Error: DecodeStruct_X: Union tag not understood for 'Y' (tag=3)",
        "Error: GetIntProperty: Property 'Count' was expected to be an int (but it is not)",
        "Error: Messages::Registrar::OnJsonMessageText: JSON parse failed at line 1, col 37: x",
        "Error: Messages::Registrar::OnJsonMessage: Received message missing the 'name' property",
        "Error: Messages::Registrar::OnJsonMessage: The 'data' has the wrong type"}) {
    EXPECT_THAT(means(line), HasSubstr("dropped one message")) << line;
  }
  for (const char* line : {"Error: Vask::JsonSocket::ProcessByteUnexpected char 'h'",
                           "Error: Vask::JsonSocket::ProcessByteProtocol error"}) {
    EXPECT_THAT(means(line), HasSubstr("not a message of the Corvane software")) << line;
  }
  for (const char* line :
       {"Error: Unable to open JsonSocket!",
        "Error: Cannot initialize SNMP extension agent: exception!",
        "Error: Cannot query the SNMP extension agent: exception!",
        "Error: Vask::JsonSocket::OpenThread open failed",
        "Error: Vask::JsonSocket::Run: exception!", "Error: Vask::TimerService::Run: exception!"}) {
    EXPECT_THAT(means(line), HasSubstr("no more memory or threads")) << line;
  }
  for (const char* line : {"Error: Socket close: Error doing WSAIoctl to load DisconnectEx!",
                           "Error: Socket close: Exception while calling DisconnectEx!"}) {
    EXPECT_THAT(means(line), HasSubstr("could not end the connection")) << line;
  }
  EXPECT_THAT(means("Error: something new"), HasSubstr("does not list"));
  EXPECT_THAT(means("Error: Unable to open JsonSocket! Not quite."), HasSubstr("does not list"));
}

}  // namespace
}  // namespace Check
