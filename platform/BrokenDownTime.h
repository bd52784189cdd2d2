#pragma once

#include <time.h>

#include "platform/Clock.h"

namespace Vask::Platform {

// A local time as the C library has it, whose months count from 0 and whose years
// from 1900, and the way back. Both are pure, for any thread.

inline LocalTime AsLocalTime(const tm& broken) noexcept {
  LocalTime local;
  local.year = static_cast<unsigned>(broken.tm_year + 1900);
  local.month = static_cast<unsigned>(broken.tm_mon + 1);
  local.day = static_cast<unsigned>(broken.tm_mday);
  local.hour = static_cast<unsigned>(broken.tm_hour);
  local.minute = static_cast<unsigned>(broken.tm_min);
  local.second = static_cast<unsigned>(broken.tm_sec);
  return local;
}

// Leaves it to the C library whether it is summer time.
inline tm AsBrokenDown(const LocalTime& local) noexcept {
  tm broken{};
  broken.tm_year = static_cast<int>(local.year) - 1900;
  broken.tm_mon = static_cast<int>(local.month) - 1;
  broken.tm_mday = static_cast<int>(local.day);
  broken.tm_hour = static_cast<int>(local.hour);
  broken.tm_min = static_cast<int>(local.minute);
  broken.tm_sec = static_cast<int>(local.second);
  broken.tm_isdst = -1;
  return broken;
}

}  // namespace Vask::Platform
