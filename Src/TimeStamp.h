#pragma once

#include <cstddef>

#include "Src/TwoDigits.h"
#include "platform/Clock.h"

namespace Vask {

// The start of every line on the console and in the log, such as
// "09:05:03.007: ": hours, minutes, seconds and milliseconds with leading
// zeros, a colon and a blank.
inline constexpr std::size_t kTimeStampLength = 14;

// Writes the kTimeStampLength characters of a time stamp; no terminating zero.
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

}  // namespace Vask
