#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace Vask::Fuzz {

// Ends the program if the condition is false. The fuzzer then keeps the input.
#define FUZZ_EXPECT(condition)                                                           \
  do {                                                                                   \
    if (!(condition)) {                                                                  \
      std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                      \
    }                                                                                    \
  } while (false)

// Reads an input from its front. Past the end every value is zero or empty, so every
// input is valid.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_at(data), m_end(data + size) {}

  [[nodiscard]] bool AtEnd() const { return m_at == m_end; }

  std::uint8_t Byte() { return AtEnd() ? std::uint8_t{0} : *m_at++; }

  // Returns the bytes up to the next NUL, which it drops, or up to the end.
  std::string Text() {
    const std::uint8_t* const end = std::find(m_at, m_end, std::uint8_t{0});
    std::string text(m_at, end);
    m_at = end == m_end ? end : end + 1;
    return text;
  }

  std::string Rest() {
    std::string text(reinterpret_cast<const char*>(m_at), static_cast<std::size_t>(m_end - m_at));
    m_at = m_end;
    return text;
  }

 private:
  const std::uint8_t* m_at;
  const std::uint8_t* m_end;
};

}  // namespace Vask::Fuzz

// Every target defines this function. The fuzzer calls it once for each input. It returns
// 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
