#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "Src/LogLevel.h"
#include "Src/TimeStamp.h"
#include "platform/Clock.h"

namespace Vask {

// What stands before the text of a line: its time stamp and its level's prefix,
// such as "09:05:03.007: Info: ". The views are valid as long as it lives.
class LogHead {
 public:
  LogHead(const Platform::LocalTime& time, LogLevel level) noexcept {
    FormatTimeStamp(time, m_text);
    const std::string_view prefix = LogPrefix(level);
    std::memcpy(m_text + kTimeStampLength, prefix.data(), prefix.size());
    m_length = kTimeStampLength + prefix.size();
  }

  [[nodiscard]] std::string_view TimeStamp() const noexcept { return {m_text, kTimeStampLength}; }
  [[nodiscard]] std::string_view Prefix() const noexcept {
    return {m_text + kTimeStampLength, m_length - kTimeStampLength};
  }
  [[nodiscard]] std::string_view Both() const noexcept { return {m_text, m_length}; }

 private:
  char m_text[kTimeStampLength + kLongestLogPrefix];
  std::size_t m_length;
};

// Makes heads. Lines come in bursts, two with each request and many with an
// update, so the last head is kept for lines of its millisecond and level. What
// Make answers holds until the next call.
class LogHeadMaker {
 public:
  [[nodiscard]] const LogHead& Make(const Platform::LocalTime& time, LogLevel level) noexcept {
    if (time != m_time || level != m_level) [[unlikely]] {
      m_head = LogHead(time, level);
      m_time = time;
      m_level = level;
    }
    return m_head;
  }

 private:
  Platform::LocalTime m_time;
  LogLevel m_level = LogLevel::Info;
  LogHead m_head{m_time, m_level};
};

}  // namespace Vask
