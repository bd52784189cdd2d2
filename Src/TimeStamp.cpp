#include "Src/TimeStamp.h"

#include "Src/PaddedNumber.h"

namespace Vask {

void FormatTimeStamp(const Platform::LocalTime& time, char (&stamp)[kTimeStampLength]) noexcept {
  WritePadded(stamp, 2, time.hour);
  stamp[2] = ':';
  WritePadded(stamp + 3, 2, time.minute);
  stamp[5] = ':';
  WritePadded(stamp + 6, 2, time.second);
  stamp[8] = '.';
  WritePadded(stamp + 9, 3, time.millisecond);
  stamp[12] = ':';
  stamp[13] = ' ';
}

}  // namespace Vask
