#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>

#include "json/KeyPiece.h"

namespace Vask {

// Sixteen characters of a text, looked at together. SSE2, which every x86-64 has.
class SixteenCharacters {
 public:
  static constexpr int kCount = 16;

  explicit SixteenCharacters(const char* at) noexcept
      : m_text(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))) {}

  // How many stand before the first that means something within a string: a
  // quote, a backslash or a control character. Bytes over 0x7F count as such,
  // too: who finds one looks again, more slowly.
  [[nodiscard]] std::size_t PlainLength() const noexcept {
    const __m128i quotes = _mm_cmpeq_epi8(m_text, _mm_set1_epi8('"'));
    const __m128i backslashes = _mm_cmpeq_epi8(m_text, _mm_set1_epi8('\\'));
    const __m128i controls = _mm_cmpgt_epi8(_mm_set1_epi8(' '), m_text);
    const __m128i ends = _mm_or_si128(_mm_or_si128(quotes, backslashes), controls);
    const auto bits = static_cast<unsigned>(_mm_movemask_epi8(ends));
    return static_cast<std::size_t>(std::countr_zero(bits | 1u << 16));
  }

  // The first `length`, at most all, with ASCII letters in lower case.
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

}  // namespace Vask
