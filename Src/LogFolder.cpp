#include "Src/LogFolder.h"

#include <new>

#include "Src/LogHead.h"

namespace Vask {

namespace {

struct Enumeration {
  const std::string& folder;
  IDailyLog::LogFileCallback callback;
  void* context;
};

// Files::List lets no exception through.
bool VisitEnumerated(const Platform::FileEntry& file, void* context) noexcept {
  const auto& enumeration = *static_cast<const Enumeration*>(context);
  try {
    const std::string path = enumeration.folder + file.name;
    return enumeration.callback(file.name, path.c_str(), enumeration.context);
  } catch (...) {
    return false;
  }
}

struct CleanUp {
  const std::string& folder;
  Platform::Files& files;
  std::int64_t cutOff;
};

bool DeleteIfOld(const Platform::FileEntry& file, void* context) noexcept {
  const auto& cleanUp = *static_cast<const CleanUp*>(context);
  const std::int64_t madeAt = file.createdAt != -1 ? file.createdAt : file.writtenAt;
  if (madeAt >= cleanUp.cutOff) return true;
  try {
    static_cast<void>(cleanUp.files.Delete((cleanUp.folder + file.name).c_str()));
  } catch (const std::bad_alloc&) {  // the next clean-up finds it again
  }
  return true;
}

}  // namespace

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
  return clock.FromLocal(midnight);
}

LogFolder::LogFolder(const char* path) : m_path(path) {
  if (m_path.back() != '\\') m_path += '\\';
  m_pattern = m_path + kLogFilePattern;
}

bool LogFolder::Enumerate(Platform::Files& files, IDailyLog::LogFileCallback callback,
                          void* context) const {
  if (m_path.empty()) return true;
  Enumeration enumeration{m_path, callback, context};
  return files.List(m_pattern.c_str(), &VisitEnumerated, &enumeration);
}

void LogFolder::DeleteOlderThan(Platform::Files& files, std::int64_t cutOff) const {
  CleanUp cleanUp{m_path, files, cutOff};
  static_cast<void>(files.List(m_pattern.c_str(), &DeleteIfOld, &cleanUp));
}

}  // namespace Vask
