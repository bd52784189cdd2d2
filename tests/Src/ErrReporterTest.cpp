#include "Src/ErrReporter.h"

#include <gtest/gtest.h>

#include "tests/support/RecordingLog.h"

namespace Vask::Tests {
namespace {

TEST(ErrReporterTest, EveryReportIsOneErrorLine) {
  RecordingLog log;
  ErrReporter reporter;
  reporter.OnError(nullptr, "DecodeStruct_Streams: 100% of it");
  reporter.OnError(nullptr, "");
  EXPECT_EQ(log.Lines(),
            (std::vector<std::string>{"Error: DecodeStruct_Streams: 100% of it\n", "Error: \n"}));
}

}  // namespace
}  // namespace Vask::Tests
