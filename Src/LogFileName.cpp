#include "Src/LogFileName.h"

#include "Src/TwoDigits.h"

namespace Vask {

void FormatLogDate(const Platform::LocalTime& day, char* date) noexcept {
  WriteTwoDigits(date, day.year / 100);
  WriteTwoDigits(date + 2, day.year % 100);
  date[4] = '-';
  WriteTwoDigits(date + 5, day.month);
  date[7] = '-';
  WriteTwoDigits(date + 8, day.day);
}

std::int64_t NextLogRotation(Platform::Clock& clock, std::int64_t now) noexcept {
  constexpr std::int64_t kDaySeconds = 86'400;
  Platform::LocalTime midnight = clock.ToLocal(now + kDaySeconds);
  midnight.hour = 0;
  midnight.minute = 0;
  midnight.second = 0;
  midnight.millisecond = 0;
  return clock.FromLocal(midnight);
}

}  // namespace Vask
