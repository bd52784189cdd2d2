#pragma once

#include <atomic>
#include <cstddef>
#include <string>

namespace Hostile {

// Bytes that the module's link receives from memory, as if a peer had sent them. A byte
// through a socket takes 170 us under Wine; a byte from here takes no system call. The
// program has one instance, because the functions that read it have no object.
class Feed {
 public:
  // The link's next bytes are `text`, repeated `times` times. The text must stay as it is
  // until Empty() is true. The feed must be empty before.
  void Start(const std::string& text, std::size_t times) noexcept {
    m_text = text.data();
    m_length = text.size();
    m_left.store(text.size() * times, std::memory_order_release);
  }

  // True if the link has received all bytes. It then reads its socket again.
  [[nodiscard]] bool Empty() const noexcept { return m_left.load(std::memory_order_acquire) == 0; }

  // For the link's thread. The feed must not be empty.
  char Next() noexcept {
    const std::size_t left = m_left.load(std::memory_order_acquire);
    const char next = m_text[(m_length - left % m_length) % m_length];
    m_left.store(left - 1, std::memory_order_release);
    return next;
  }

 private:
  const char* m_text = nullptr;
  std::size_t m_length = 0;
  std::atomic<std::size_t> m_left{0};
};

inline constinit Feed g_feed;

// Makes the module wait for bytes and receive them from the feed while it is not empty.
// Call this before the module has threads. linux/ and win32/ implement it. Prints the
// reason and ends the program if the module does not import one of the functions.
void PutFedImports(void* library);

}  // namespace Hostile
