#include "Src/LogFolder.h"

#include <new>

#include "Src/LogFileName.h"

namespace Vask {

namespace {

struct Enumeration {
  const std::string& folder;
  IDailyLog::LogFileCallback callback;
  void* context;
};

// The seam that calls it lets no exception through.
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
  const std::int64_t age = file.createdAt != -1 ? file.createdAt : file.writtenAt;
  if (age >= cleanUp.cutOff) return true;
  try {
    cleanUp.files.Delete((cleanUp.folder + file.name).c_str());
  } catch (const std::bad_alloc&) {  // the next clean-up finds it again
  }
  return true;
}

}  // namespace

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
  files.List(m_pattern.c_str(), &DeleteIfOld, &cleanUp);
}

}  // namespace Vask
