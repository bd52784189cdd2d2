#pragma once

#include <cstdint>
#include <string>

#include "Src/IDailyLog.h"
#include "platform/Files.h"

namespace Vask {

// The folder that a log's files lie in. Empty at first: then it has no files.
class LogFolder {
 public:
  LogFolder() = default;
  // `path` is not empty; a missing backslash at its end is added.
  explicit LogFolder(const char* path);

  // With its backslash, or empty.
  [[nodiscard]] const std::string& Path() const noexcept { return m_path; }

  // Calls `callback` for each log file until it answers false; false exactly
  // then, and when it throws or there is no memory for a path.
  bool Enumerate(Platform::Files& files, IDailyLog::LogFileCallback callback, void* context) const;

  // Deletes every log file that was created (or, where that is unknown, last
  // written) before `cutOff`, in seconds since the epoch. One that there is no
  // memory for stays until the next time.
  void DeleteOlderThan(Platform::Files& files, std::int64_t cutOff) const;

 private:
  std::string m_path;
  std::string m_pattern;
};

}  // namespace Vask
