#pragma once

#include "Src/IDailyLog.h"

#if defined(__MINGW32__)
#define VASK_PRINTF_FORMAT(formatIndex, firstArgument) \
  __attribute__((format(gnu_printf, formatIndex, firstArgument)))
#else
#define VASK_PRINTF_FORMAT(formatIndex, firstArgument) \
  __attribute__((format(printf, formatIndex, firstArgument)))
#endif

namespace Vask {

// The printf-style front of the log that every component writes to.
class ILoggingOutput {
 public:
  virtual void Info(const char* format, ...) VASK_PRINTF_FORMAT(2, 3) = 0;
  virtual void Warning(const char* format, ...) VASK_PRINTF_FORMAT(2, 3) = 0;
  virtual void Error(const char* format, ...) VASK_PRINTF_FORMAT(2, 3) = 0;

 protected:
  ~ILoggingOutput() = default;
};

// The one printer of the process.
class LogPrinter final : public ILoggingOutput {
 public:
  static LogPrinter& Instance();

  void Info(const char* format, ...) override VASK_PRINTF_FORMAT(2, 3);
  void Warning(const char* format, ...) override VASK_PRINTF_FORMAT(2, 3);
  void Error(const char* format, ...) override VASK_PRINTF_FORMAT(2, 3);

  // Messages go to this log from now on; null sends them to the console again.
  // Any thread. The target must outlive its being set.
  void SetTarget(IDailyLog* target);
};

}  // namespace Vask
