#include "json/SixteenCharacters.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Vask {
namespace {

bool IsPlain(unsigned char c) {
  return c >= ' ' && c < 0x80 && c != '"' && c != '\\';
}

// Every test runs on each form that this processor has.
template <class Form>
class SixteenCharactersTest : public ::testing::Test {};
#if defined(CORVANE_SSE2_SCANNING)
using Forms = ::testing::Types<PortableSixteenCharacters, Sse2SixteenCharacters>;
#else
using Forms = ::testing::Types<PortableSixteenCharacters>;
#endif
TYPED_TEST_SUITE(SixteenCharactersTest, Forms);

TYPED_TEST(SixteenCharactersTest, PlainLengthEndsAtWhateverMeansSomething) {
  for (unsigned c = 0; c < 256; ++c) {
    for (std::size_t at = 0; at < 16; ++at) {
      std::string text(16, 'x');
      text[at] = static_cast<char>(c);
      EXPECT_EQ(TypeParam(text.data()).PlainLength(),
                IsPlain(static_cast<unsigned char>(c)) ? 16 : at)
          << c << " at " << at;
    }
  }
}

TYPED_TEST(SixteenCharactersTest, FirstOfSeveralEndsCounts) {
  EXPECT_EQ(TypeParam("name\":\"\\\n\t_____").PlainLength(), 4u);
}

// Does the same, character by character.
KeyPiece Piece(std::string_view characters) {
  KeyPiece piece;
  for (const char c : characters) piece.Add(static_cast<signed char>(c));
  return piece;
}

void ExpectSame(const KeyPiece& found, const KeyPiece& expected) {
  EXPECT_EQ(found.low, expected.low);
  EXPECT_EQ(found.high, expected.high);
  EXPECT_EQ(found.length, expected.length);
}

TYPED_TEST(SixteenCharactersTest, OnlyCapitalLettersAreLowered) {
  for (unsigned c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    const std::string text(16, static_cast<char>(c));
    const std::string lower(16, static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c));
    ExpectSame(TypeParam(text.data()).Lower(16), Piece(lower));
  }
}

TYPED_TEST(SixteenCharactersTest, NothingComesThatIsNotAskedFor) {
  const std::string text = "ABCDEFGHIJKLMNOP";
  const std::string lower = "abcdefghijklmnop";
  for (std::size_t length = 0; length <= 16; ++length) {
    SCOPED_TRACE(length);
    ExpectSame(TypeParam(text.data()).Lower(length), Piece(lower.substr(0, length)));
  }
}

}  // namespace
}  // namespace Vask
