#pragma once

#include <atomic>
#include <cstdarg>
#include <cstddef>

#include "Src/IDailyLog.h"
#include "Src/SingletonRef.h"
#include "platform/Clock.h"
#include "platform/CriticalSection.h"
#include "platform/Files.h"

// Makes the compiler check formats. On Windows they have the meaning that they have
// elsewhere (%llu, %zu and so on).
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

// The one printer of the process. It formats a message and passes the finished text to
// the daily log, or to the console while there is no log. Any thread may call any
// operation. None reports a failure, and no exception of the log or its listeners
// reaches the caller.
//
// It depends on no other singleton, so Instance() works at any time: a caller that logs
// after the printer was destroyed at unload gets a new one that writes to the console.
class LogPrinter final : public ILoggingOutput, public Thread::SingletonRef<LogPrinter> {
 public:
  // vsnprintf or a replacement with the same contract. A negative result means that it
  // cannot format the arguments.
  using Formatter = int (*)(char* text, std::size_t capacity, const char* format,
                            std::va_list arguments) noexcept;

  // Both include the terminating zero. A longer text is cut.
  static constexpr std::size_t kTextCapacity = 2048;
  static constexpr std::size_t kLastErrorCapacity = 1024;

  // The default arguments are those of the process's own printer.
  explicit LogPrinter(Platform::Clock& clock = Platform::SystemClock(),
                      Platform::Files& files = Platform::SystemFiles(),
                      Formatter formatter = nullptr) noexcept;
  LogPrinter(const LogPrinter&) = delete;
  LogPrinter& operator=(const LogPrinter&) = delete;

  // The format includes the line end. If the arguments cannot be formatted, the message
  // is "Invalid message format: '%s'!\n" with the format.
  void Info(const char* format, ...) override VASK_PRINTF_FORMAT(2, 3);
  void Warning(const char* format, ...) override VASK_PRINTF_FORMAT(2, 3);
  void Error(const char* format, ...) override VASK_PRINTF_FORMAT(2, 3);

  // Sends messages to this log from now on, or to the console again if it is null. The
  // log must stay alive until another target is set.
  void SetTarget(IDailyLog* target) noexcept;
  // For a log that is destroyed: if it is the target, messages go to the console again.
  void RemoveTarget(IDailyLog* target) noexcept;

  // The form of lines on the console. Only `console` on, as at first: "09:05:03.007:
  // Error: text". `compact` on: "Etext". Both off: no lines.
  void SetConsole(bool console) noexcept;
  void SetCompact(bool compact) noexcept;

  // Copies the last text given to Error, "No error" at first, cut to `capacity` - 1
  // characters. `capacity` must be at least 1.
  void CopyLastError(char* text, std::size_t capacity) const noexcept;

 private:
  struct Level;
  static const Level kInfo;
  static const Level kWarning;
  static const Level kError;

  void Format(char (&text)[kTextCapacity], const char* format,
              std::va_list arguments) const noexcept;
  void Deliver(const Level& level, const char* text) noexcept;
  void PrintToConsole(const char* levelName, const char* text) noexcept;
  void RememberError(const char* text) noexcept;

  std::atomic<IDailyLog*> m_target{nullptr};
  mutable Platform::CriticalSection m_lastErrorLock{Platform::LockRank::LastError};
  char m_lastError[kLastErrorCapacity] VASK_GUARDED_BY(m_lastErrorLock) = "No error";
  std::atomic<bool> m_console{true};
  std::atomic<bool> m_compact{false};
  Platform::Clock& m_clock;
  Platform::Files& m_files;
  const Formatter m_formatter;
};

}  // namespace Vask
