#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/Clock.h"

namespace Vask {

// The beginning of a line of the log: its time stamp and the prefix of its level, such as
// "09:05:03.007: Info: ".

// Writes a number below 100 as two digits, without a terminating zero. It does what
// "%2.2u" does, at a twentieth of the cost.
inline void WriteTwoDigits(char* to, unsigned value) noexcept {
  to[0] = static_cast<char>('0' + value / 10);
  to[1] = static_cast<char>('0' + value % 10);
}

// Hours, minutes, seconds and milliseconds with leading zeros, a colon and a blank.
inline constexpr std::size_t kTimeStampLength = 14;

// Writes the kTimeStampLength characters of a time stamp, without a terminating zero.
inline void FormatTimeStamp(const Platform::LocalTime& time, char* stamp) noexcept {
  WriteTwoDigits(stamp, time.hour);
  stamp[2] = ':';
  WriteTwoDigits(stamp + 3, time.minute);
  stamp[5] = ':';
  WriteTwoDigits(stamp + 6, time.second);
  stamp[8] = '.';
  stamp[9] = static_cast<char>('0' + time.millisecond / 100);
  WriteTwoDigits(stamp + 10, time.millisecond % 100);
  stamp[12] = ':';
  stamp[13] = ' ';
}

// The levels of the daily log; each value is the level's bit in a mask.
enum class LogLevel : std::uint32_t { Error = 1, Warning = 2, Info = 4, Trace = 8 };

inline constexpr std::uint32_t kAllLogLevels = 15;

// The text between a line's time stamp and its message.
constexpr std::string_view LogPrefix(LogLevel level) noexcept {
  switch (level) {
    case LogLevel::Error:
      return "Error: ";
    case LogLevel::Warning:
      return "Warning: ";
    case LogLevel::Info:
      return "Info: ";
    case LogLevel::Trace:
      break;
  }
  return "TRACE: ";
}

inline constexpr std::size_t kLongestLogPrefix =
    std::max({LogPrefix(LogLevel::Error).size(), LogPrefix(LogLevel::Warning).size(),
              LogPrefix(LogLevel::Info).size(), LogPrefix(LogLevel::Trace).size()});

// Time stamp and prefix of one line. The views are valid as long as the object lives.
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
  char m_text[kTimeStampLength + kLongestLogPrefix] = {};
  std::size_t m_length;
};

// Makes heads. Lines come in bursts, two with each request and many with an update,
// so it caches the head of the last millisecond and level. The result of Make is valid
// until the next call. Not thread-safe.
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
