#include "Src/TimeStamp.h"

namespace Vask {

namespace {

char Digit(unsigned value) noexcept {
  return static_cast<char>('0' + value % 10);
}

}  // namespace

// By hand: printf's way takes as long as writing the line to the file.
void FormatTimeStamp(const Platform::LocalTime& time, char (&stamp)[kTimeStampLength]) noexcept {
  stamp[0] = Digit(time.hour / 10);
  stamp[1] = Digit(time.hour);
  stamp[2] = ':';
  stamp[3] = Digit(time.minute / 10);
  stamp[4] = Digit(time.minute);
  stamp[5] = ':';
  stamp[6] = Digit(time.second / 10);
  stamp[7] = Digit(time.second);
  stamp[8] = '.';
  stamp[9] = Digit(time.millisecond / 100);
  stamp[10] = Digit(time.millisecond / 10);
  stamp[11] = Digit(time.millisecond);
  stamp[12] = ':';
  stamp[13] = ' ';
}

}  // namespace Vask
