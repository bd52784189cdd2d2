#include "net/Framing.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace Vask::Tests {
namespace {

struct WriterRow {
  const char* name;
  std::string body;
  std::string frame;
};

void PrintTo(const WriterRow& row, std::ostream* out) {
  *out << row.name << ": " << row.body;
}

class FrameWriterTest : public testing::TestWithParam<WriterRow> {};

TEST_P(FrameWriterTest, WritesLengthHashAndBody) {
  std::string out = "before ";
  AppendFrame(out, GetParam().body);
  EXPECT_EQ(out, "before " + GetParam().frame);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, FrameWriterTest,
    testing::Values(WriterRow{"Example", R"({"a":1})", R"(7#{"a":1})"},
                    WriterRow{"Empty", "", "0#"},
                    WriterRow{"TwoDigits", "0123456789", "10#0123456789"},
                    WriterRow{"BytesCountNotCharacters", "\xC3\xA9", "2#\xC3\xA9"},
                    WriterRow{"ZeroByte", std::string("\0", 1), std::string("1#\0", 3)}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Vask::Tests
