#include "json/StringScan.h"

#include <gtest/gtest.h>

#include <string>

namespace Vask::Tests {
namespace {

struct RoomRow {
  const char* name;
  std::string text;  // behind the opening quote
  std::size_t room;
};

class StringRooms : public testing::TestWithParam<RoomRow> {};

TEST_P(StringRooms, AreTheBytesBeforeTheClosingQuote) {
  EXPECT_EQ(StringRoom(GetParam().text.c_str()), GetParam().room);
}

INSTANTIATE_TEST_SUITE_P(Rows, StringRooms,
                         testing::Values(RoomRow{"Empty", R"(")", 0}, RoomRow{"Plain", R"(ab")", 2},
                                         RoomRow{"EscapedQuote", R"(a\"b")", 4},
                                         RoomRow{"EscapedBackslash", R"(a\\")", 3},
                                         RoomRow{"EscapeAtTheBeginning", R"(\n")", 2},
                                         RoomRow{"LineFeed", "\n\"b\"", 1},
                                         RoomRow{"LineFeedBetween", "a\nb\"\"", 3},
                                         RoomRow{"Long", std::string(100, 'x') + R"(\"y")", 103},
                                         RoomRow{"EndOfTheText", "ab", 2},
                                         RoomRow{"EndBehindABackslash", "a\\", 2},
                                         RoomRow{"EndBehindAnEscapedQuote", R"(a\")", 3}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace Vask::Tests
