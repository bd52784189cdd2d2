#pragma once

#include <cstddef>

#include "platform/Clock.h"

namespace Vask {

// The start of every line on the console and in the log, such as
// "09:05:03.007: ": hours, minutes, seconds and milliseconds with leading
// zeros, a colon and a blank.
inline constexpr std::size_t kTimeStampLength = 14;

// Writes the time stamp without a terminating zero.
void FormatTimeStamp(const Platform::LocalTime& time, char (&stamp)[kTimeStampLength]) noexcept;

}  // namespace Vask
