#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Vask {

// The levels of the daily log; each value is the level's bit in a mask.
enum class LogLevel : std::uint32_t { Error = 1, Warning = 2, Info = 4, Trace = 8 };

inline constexpr std::uint32_t kAllLogLevels = 15;

// What stands between a line's time stamp and its text.
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

}  // namespace Vask
