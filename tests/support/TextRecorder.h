#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace Vask::Tests {

// A list of texts. Any thread may add one, and a test can wait for one. A wait returns
// false when its time is over.
class TextRecorder {
 public:
  static constexpr std::chrono::seconds kPatience{60};

  void Add(std::string text) {
    const std::lock_guard lock(m_mutex);
    m_texts.push_back(std::move(text));
    m_added.notify_all();
  }

  std::vector<std::string> Texts() const {
    const std::lock_guard lock(m_mutex);
    return m_texts;
  }

  std::size_t Count() const {
    const std::lock_guard lock(m_mutex);
    return m_texts.size();
  }

  [[nodiscard]] bool WaitForCount(std::size_t count,
                                  std::chrono::milliseconds patience = kPatience) {
    std::unique_lock lock(m_mutex);
    return m_added.wait_for(lock, patience, [&] { return m_texts.size() >= count; });
  }

  [[nodiscard]] bool WaitForText(const std::string& text,
                                 std::chrono::milliseconds patience = kPatience) {
    std::unique_lock lock(m_mutex);
    return m_added.wait_for(lock, patience, [&] {
      for (const std::string& each : m_texts) {
        if (each == text) return true;
      }
      return false;
    });
  }

 private:
  mutable std::mutex m_mutex;
  std::condition_variable m_added;
  std::vector<std::string> m_texts;
};

}  // namespace Vask::Tests
