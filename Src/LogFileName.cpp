#include "Src/LogFileName.h"

#include "Src/PaddedNumber.h"

namespace Vask {

void FormatLogDate(const Platform::LocalTime& day, char (&date)[kLogDateLength]) noexcept {
  WritePadded(date, 4, day.year);
  date[4] = '-';
  WritePadded(date + 5, 2, day.month);
  date[7] = '-';
  WritePadded(date + 8, 2, day.day);
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
