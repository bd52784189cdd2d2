#pragma once

// CORVANE_PORTABLE_SCANNING selects the form for any processor, so that a test can build the
// parser with it on x86-64.
#if defined(__x86_64__) && !defined(CORVANE_PORTABLE_SCANNING)
#define CORVANE_SSE2_SCANNING
#include <emmintrin.h>
#endif

#include <bit>
#include <cstddef>
#include <cstdint>

#include "json/FoldedKey.h"

namespace Vask {

// Sixteen characters of a text, examined together. There are two forms that behave the
// same: one for any processor, and one for x86-64, which is faster. The constructor takes
// the place of the first character; all sixteen must be readable.

class PortableSixteenCharacters {
 public:
  static constexpr int kCount = 16;

  explicit PortableSixteenCharacters(const char* at) noexcept : m_text(at) {}

  // Returns the number of characters before the first one that is not plain within a
  // string: a quote, a backslash or a control character. Bytes over 0x7F count as not
  // plain, too; a caller that finds one uses a slower way.
  [[nodiscard]] std::size_t PlainLength() const noexcept {
    std::size_t length = 0;
    while (length != kCount && IsPlain(m_text[length])) ++length;
    return length;
  }

  // The first `length` characters, at most all, with ASCII letters in lower case.
  [[nodiscard]] KeyPiece Lower(std::size_t length) const noexcept {
    KeyPiece piece;
    while (piece.length != length) {
      piece.Add(static_cast<signed char>(FoldAscii(m_text[piece.length])));
    }
    return piece;
  }

 private:
  static constexpr bool IsPlain(char c) noexcept {
    return static_cast<signed char>(c) >= ' ' && c != '"' && c != '\\';
  }

  const char* m_text;
};

#if defined(CORVANE_SSE2_SCANNING)

class Sse2SixteenCharacters {
 public:
  static constexpr int kCount = 16;

  explicit Sse2SixteenCharacters(const char* at) noexcept
      : m_text(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))) {}

  [[nodiscard]] std::size_t PlainLength() const noexcept {
    const __m128i quotes = _mm_cmpeq_epi8(m_text, _mm_set1_epi8('"'));
    const __m128i backslashes = _mm_cmpeq_epi8(m_text, _mm_set1_epi8('\\'));
    const __m128i controls = _mm_cmpgt_epi8(_mm_set1_epi8(' '), m_text);
    const __m128i ends = _mm_or_si128(_mm_or_si128(quotes, backslashes), controls);
    const auto bits = static_cast<unsigned>(_mm_movemask_epi8(ends));
    return static_cast<std::size_t>(std::countr_zero(bits | 1u << 16));
  }

  [[nodiscard]] KeyPiece Lower(std::size_t length) const noexcept {
    static constexpr signed char kKept[32] = {-1, -1, -1, -1, -1, -1, -1, -1,
                                              -1, -1, -1, -1, -1, -1, -1, -1};
    // 'A' to 'Z' become the 26 largest of the signed bytes, and nothing else does.
    const __m128i moved = _mm_add_epi8(m_text, _mm_set1_epi8(0x7F - 'Z'));
    const __m128i capitals = _mm_cmpgt_epi8(moved, _mm_set1_epi8(0x7F - 26));
    const __m128i lower = _mm_or_si128(m_text, _mm_and_si128(capitals, _mm_set1_epi8(0x20)));
    const __m128i kept = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kKept + 16 - length));
    const __m128i first = _mm_and_si128(lower, kept);
    return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(first)),
            static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(first, first))),
            length};
  }

 private:
  __m128i m_text;
};
using SixteenCharacters = Sse2SixteenCharacters;

#else

using SixteenCharacters = PortableSixteenCharacters;

#endif

}  // namespace Vask
