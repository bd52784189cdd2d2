#pragma once

#include <windows.h>

#include <cstdint>

// Conversions between FILETIME, which counts units of 100 ns from 1601-01-01, and seconds since
// 1970-01-01. Pure functions, for any thread.
namespace Vask::Platform {

inline constexpr std::int64_t kEpochAsFileTime = 116'444'736'000'000'000;
inline constexpr std::int64_t kFileTimePerSecond = 10'000'000;

inline std::int64_t FileTimeUnits(const FILETIME& time) noexcept {
  return (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

inline std::int64_t ToEpochSeconds(const FILETIME& time) noexcept {
  return (FileTimeUnits(time) - kEpochAsFileTime) / kFileTimePerSecond;
}

// For a moment of the years 1601 to 30827.
inline FILETIME ToFileTime(std::int64_t epochSeconds) noexcept {
  const auto units =
      static_cast<std::uint64_t>(epochSeconds * kFileTimePerSecond + kEpochAsFileTime);
  return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

}  // namespace Vask::Platform
