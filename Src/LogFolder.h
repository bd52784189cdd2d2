#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Src/IDailyLog.h"
#include "platform/Clock.h"
#include "platform/Files.h"

namespace Vask {

// The folder and the names of the files of a log, such as Log2018-05-14.log, and the
// moment when the next file begins.

inline constexpr char kLogFilePrefix[] = "Log";
inline constexpr char kLogFileExtension[] = ".log";
inline constexpr char kLogFilePattern[] = "Log*.log";
inline constexpr std::size_t kLogDateLength = 10;

// Writes the kLogDateLength characters of year, month and day, such as "2018-05-14",
// without a terminating zero. The year has four digits.
void FormatLogDate(const Platform::LocalTime& day, char* date) noexcept;

// Returns the local midnight that ends the day of `now`; both in seconds since the epoch.
// It is the start of the local day that is 24 hours from now. In the first hour of a day
// of 25 hours that is the same day, and its start is in the past. Until the hour is over,
// the log therefore opens the same file again for every piece.
[[nodiscard]] std::int64_t NextLogRotation(Platform::Clock& clock, std::int64_t now) noexcept;

// The folder of a log's files. A new object names no folder and has no files. Not
// thread-safe.
class LogFolder {
 public:
  LogFolder() = default;
  // `path` is not empty. A backslash is added at its end if there is none.
  explicit LogFolder(const char* path);

  // With its backslash, or empty.
  [[nodiscard]] const std::string& Path() const noexcept { return m_path; }

  // Calls `callback` for each log file until it returns false. Returns false if it did,
  // if it threw, or if there was no memory for a path.
  [[nodiscard]] bool Enumerate(Platform::Files& files, IDailyLog::LogFileCallback callback,
                               void* context) const;

  // Deletes every log file that was created before `cutOff`, in seconds since the
  // epoch. If the time of creation is unknown, the last write counts. Without memory
  // for its path a file stays until the next time.
  void DeleteOlderThan(Platform::Files& files, std::int64_t cutOff) const;

 private:
  std::string m_path;
  std::string m_pattern;
};

}  // namespace Vask
