#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/Clock.h"

namespace Vask {

// How the log's files are named, such as Log2018-05-14.log, and when the next
// name begins. Functions of a time, nothing else.

inline constexpr char kLogFilePrefix[] = "Log";
inline constexpr char kLogFileExtension[] = ".log";
inline constexpr char kLogFilePattern[] = "Log*.log";
inline constexpr std::size_t kLogDateLength = 10;

// Writes the kLogDateLength characters of year, month and day, such as
// "2018-05-14", without a terminating zero. Years have four digits.
void FormatLogDate(const Platform::LocalTime& day, char* date) noexcept;

// The local midnight that ends the day of `now`; both in seconds since the
// epoch. Computed as the start of the local day that 24 hours from now lie in:
// in the first hour of a day of 25 hours that is today's, already past, and the
// log opens the same file again for every piece until that hour is over.
std::int64_t NextLogRotation(Platform::Clock& clock, std::int64_t now) noexcept;

}  // namespace Vask
