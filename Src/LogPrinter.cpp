#include "Src/LogPrinter.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Src/LogHead.h"

namespace Vask {

// A level: its name on the console and its operation of the daily log.
struct LogPrinter::Level {
  const char* name;
  void (IDailyLog::*write)(const char* text);
};
constinit const LogPrinter::Level LogPrinter::kInfo{"Info", &IDailyLog::Info};
constinit const LogPrinter::Level LogPrinter::kWarning{"Warning", &IDailyLog::Warning};
constinit const LogPrinter::Level LogPrinter::kError{"Error", &IDailyLog::Error};

namespace {

VASK_PRINTF_FORMAT(3, 0)
int FormatText(char* text, std::size_t capacity, const char* format,
               std::va_list arguments) noexcept {
  return std::vsnprintf(text, capacity, format, arguments);
}

// Copies as much as fits with the terminating zero.
void CopyText(char* to, std::size_t capacity, const char* from) noexcept {
  const std::size_t length = std::min(std::strlen(from), capacity - 1);
  std::memcpy(to, from, length);
  to[length] = '\0';
}

}  // namespace

LogPrinter::LogPrinter(Platform::Clock& clock, Platform::Files& files, Formatter formatter) noexcept
    : m_clock(clock), m_files(files), m_formatter(formatter != nullptr ? formatter : &FormatText) {}

void LogPrinter::Info(const char* format, ...) {
  char text[kTextCapacity];
  std::va_list arguments;
  va_start(arguments, format);
  Format(text, format, arguments);
  va_end(arguments);
  Deliver(kInfo, text);
}

void LogPrinter::Warning(const char* format, ...) {
  char text[kTextCapacity];
  std::va_list arguments;
  va_start(arguments, format);
  Format(text, format, arguments);
  va_end(arguments);
  Deliver(kWarning, text);
}

void LogPrinter::Error(const char* format, ...) {
  char text[kTextCapacity];
  std::va_list arguments;
  va_start(arguments, format);
  Format(text, format, arguments);
  va_end(arguments);
  RememberError(text);
  Deliver(kError, text);
}

void LogPrinter::SetTarget(IDailyLog* target) noexcept {
  m_target.store(target, std::memory_order_release);
}

void LogPrinter::RemoveTarget(IDailyLog* target) noexcept {
  m_target.compare_exchange_strong(target, nullptr);
}

void LogPrinter::SetConsole(bool console) noexcept {
  m_console.store(console, std::memory_order_relaxed);
}

void LogPrinter::SetCompact(bool compact) noexcept {
  m_compact.store(compact, std::memory_order_relaxed);
}

void LogPrinter::CopyLastError(char* text, std::size_t capacity) const noexcept {
  const Platform::CriticalSectionLock lock(m_lastErrorLock);
  CopyText(text, capacity, m_lastError);
}

void LogPrinter::Format(char (&text)[kTextCapacity], const char* format,
                        std::va_list arguments) const noexcept {
  if (m_formatter(text, sizeof text, format, arguments) >= 0) return;
  static_cast<void>(std::snprintf(text, sizeof text, "Invalid message format: '%s'!\n", format));
}

void LogPrinter::Deliver(const Level& level, const char* text) noexcept {
  if (IDailyLog* const target = m_target.load(std::memory_order_acquire)) {
    try {
      (target->*level.write)(text);
    } catch (...) {  // a line that cannot be logged must not disturb its caller
    }
  } else {
    PrintToConsole(level.name, text);
  }
}

// Writes the line in one call, so that lines of several threads or processes stay
// whole. Nothing is buffered, so there is nothing to flush.
void LogPrinter::PrintToConsole(const char* levelName, const char* text) noexcept {
  const bool compact = m_compact.load(std::memory_order_relaxed);
  if (!compact && !m_console.load(std::memory_order_relaxed)) return;
  constexpr std::size_t kLongestLevel = sizeof "Warning: ";
  char line[kTimeStampLength + kLongestLevel + kTextCapacity];
  int length = 0;
  if (compact) {
    length = std::snprintf(line, sizeof line, "%c%s", levelName[0], text);
  } else {
    char stamp[kTimeStampLength];
    FormatTimeStamp(m_clock.LocalNow(), stamp);
    length = std::snprintf(line, sizeof line, "%.*s%s: %s", static_cast<int>(sizeof stamp), stamp,
                           levelName, text);
  }
  if (length > 0) m_files.Append(m_files.StandardOutput(), line, static_cast<std::size_t>(length));
}

void LogPrinter::RememberError(const char* text) noexcept {
  const Platform::CriticalSectionLock lock(m_lastErrorLock);
  CopyText(m_lastError, sizeof m_lastError, text);
}

}  // namespace Vask
