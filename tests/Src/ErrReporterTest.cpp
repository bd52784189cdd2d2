#include "Src/ErrReporter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(ErrReporterTest, AReportIsFormattedAndCutTo255Characters) {
  RecordingLog log;
  ErrReporter reporter;
  IOnError::Report(&reporter, "%s of %d", "one", 2);
  IOnError::Report(&reporter, "%s", std::string(255, 'f').c_str());
  IOnError::Report(&reporter, "%s", std::string(256, 'c').c_str());
  EXPECT_EQ(log.Lines(),
            (std::vector<std::string>{"Error: one of 2\n", "Error: " + std::string(255, 'f') + "\n",
                                      "Error: " + std::string(255, 'c') + "\n"}));
}

TEST(ErrReporterTest, AReportWithoutASinkIsDropped) {
  RecordingLog log;
  IOnError::Report(nullptr, "%d", 1);
  EXPECT_TRUE(log.Lines().empty());
}

}  // namespace
}  // namespace Vask::Tests
