#include "json/KeyPiece.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Vask {
namespace {

constexpr std::string_view kText = "0123456789abcdef";

KeyPiece Piece(std::string_view characters) {
  KeyPiece piece;
  for (const char c : characters) piece.Add(static_cast<signed char>(c));
  return piece;
}

void ExpectIs(const KeyPiece& found, std::string_view characters) {
  const KeyPiece expected = Piece(characters);
  EXPECT_EQ(found.low, expected.low) << characters;
  EXPECT_EQ(found.high, expected.high) << characters;
  EXPECT_EQ(found.length, characters.size()) << characters;
}

TEST(KeyPiece, IsDividedAnywhere) {
  for (std::size_t length = 0; length <= kText.size(); ++length) {
    const std::string_view text = kText.substr(0, length);
    for (std::size_t at = 0; at <= length; ++at) {
      ExpectIs(Piece(text).CutTo(at), text.substr(0, at));
      ExpectIs(Piece(text).Behind(at), text.substr(at));
    }
  }
}

TEST(KeyPiece, CommonLengthEndsAtTheFirstDifference) {
  for (std::size_t at = 0; at < kText.size(); ++at) {
    std::string other(kText);
    other[at] = '\x80';
    EXPECT_EQ(Piece(kText).CommonLength(Piece(other)), at);
    EXPECT_EQ(Piece(other).CommonLength(Piece(kText)), at);
    EXPECT_EQ(Piece(kText).CommonLength(Piece(kText.substr(0, at))), at);
  }
  EXPECT_EQ(Piece(kText).CommonLength(Piece(kText)), kText.size());
}

TEST(KeyPiece, CharactersAreSigned) {
  EXPECT_EQ(Piece("\x80z").First(), -128);
  EXPECT_EQ(Piece("z\x80").First(), 'z');
}

}  // namespace
}  // namespace Vask
