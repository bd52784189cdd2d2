#include "json/SixteenCharacters.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Vask {
namespace {

bool IsPlain(unsigned char c) {
  return c >= ' ' && c < 0x80 && c != '"' && c != '\\';
}

TEST(SixteenCharacters, PlainLengthEndsAtWhateverMeansSomething) {
  for (unsigned c = 0; c < 256; ++c) {
    for (std::size_t at = 0; at < 16; ++at) {
      std::string text(16, 'x');
      text[at] = static_cast<char>(c);
      EXPECT_EQ(SixteenCharacters(text.data()).PlainLength(),
                IsPlain(static_cast<unsigned char>(c)) ? 16 : at)
          << c << " at " << at;
    }
  }
}

TEST(SixteenCharacters, FirstOfSeveralEndsCounts) {
  EXPECT_EQ(SixteenCharacters("name\":\"\\\n\t_____").PlainLength(), 4u);
}

TEST(SixteenCharacters, OnlyCapitalLettersAreLowered) {
  for (unsigned c = 0; c < 256; ++c) {
    const std::string text(16, static_cast<char>(c));
    signed char lower[16];
    SixteenCharacters(text.data()).StoreLower(lower, 16);
    const auto expected = static_cast<signed char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    for (const signed char found : lower) EXPECT_EQ(found, expected) << c;
  }
}

TEST(SixteenCharacters, WhatIsNotAskedForIsStoredAsZeros) {
  constexpr std::string_view kText = "ABCDEFGHIJKLMNOP";
  for (std::size_t length = 0; length <= 16; ++length) {
    signed char lower[16];
    SixteenCharacters(kText.data()).StoreLower(lower, length);
    for (std::size_t i = 0; i < 16; ++i) {
      EXPECT_EQ(lower[i], i < length ? kText[i] + 32 : 0) << length << ", " << i;
    }
  }
}

}  // namespace
}  // namespace Vask
