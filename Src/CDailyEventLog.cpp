#include "Src/CDailyEventLog.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "net/CFileName2.h"

namespace Vask {

namespace {

constexpr char kStandardOutputName[] = "stdout";

}  // namespace

CDailyEventLog::CDailyEventLog(Platform::Clock& clock, Platform::Files& files) noexcept
    : m_clock(clock), m_files(files) {}

CDailyEventLog::~CDailyEventLog() {
  Close();
}

bool CDailyEventLog::Open(const char* folder) {
  Close();
  if (folder != nullptr && std::strcmp(folder, kStandardOutputName) == 0) {
    return OpenStandardOutput();
  }
  char current[kPathCapacity];
  if (folder == nullptr) {
    if (!m_files.CurrentFolder(current, sizeof current)) return false;
    folder = current;
  }
  return OpenFolder(folder);
}

void CDailyEventLog::SetDaysToKeep(std::uint32_t days) {
  m_daysToKeep = days;
  if (m_isStandardOutput || m_date == nullptr) return;
  static_cast<void>(OpenToday());
}

void CDailyEventLog::SetSizeLimit(std::uint32_t bytes) noexcept {
  m_sizeLimit = bytes != 0 ? bytes : kNoSizeLimit;
}

bool CDailyEventLog::OpenStandardOutput() {
  m_folder = LogFolder();
  m_isStandardOutput = true;
  m_file = m_files.StandardOutput();
  return true;
}

bool CDailyEventLog::OpenFolder(const char* folder) {
  if (folder[0] == '\0') return false;
  const LogFolder opened(folder);
  const std::size_t prefixEnd = opened.Path().size() + std::strlen(kLogFilePrefix);
  if (prefixEnd + kLogDateLength + sizeof kLogFileExtension > kPathCapacity) return false;
  static_cast<void>(CFileName2::CreateFolders(folder, m_files));  // OpenToday fails if this did
  m_folder = opened;
  m_isStandardOutput = false;
  m_daysToKeep = kDefaultDaysToKeep;
  std::memcpy(m_path, opened.Path().data(), opened.Path().size());
  std::memcpy(m_path + opened.Path().size(), kLogFilePrefix, std::strlen(kLogFilePrefix));
  m_date = m_path + prefixEnd;
  std::memcpy(m_date + kLogDateLength, kLogFileExtension, sizeof kLogFileExtension);
  return OpenToday();
}

// If logging to this file was stopped, the count continues from the stop. The warning leaves
// the file shorter than the limit, so with the file's length the log would accept short
// pieces again.
bool CDailyEventLog::OpenToday() {
  Close();
  const std::int64_t now = m_clock.EpochSeconds();
  FormatLogDate(m_clock.ToLocal(now), m_date);
  m_file = m_files.OpenForAppend(m_path);
  if (m_file == Platform::kNoFile) return false;
  m_nextRotation = NextLogRotation(m_clock, now);
  if (m_daysToKeep != kKeepAll) {
    m_folder.DeleteOlderThan(m_files, m_nextRotation - std::int64_t{m_daysToKeep} * 86'400);
  }
  m_bytesToday = m_files.Length(m_file);
  if (StoppedToday()) m_bytesToday = std::max(m_bytesToday, m_bytesAtStop);
  return true;
}

bool CDailyEventLog::StoppedToday() const noexcept {
  return std::strcmp(m_stoppedPath, m_path) == 0;
}

void CDailyEventLog::Close() noexcept {
  if (IsOpen() && !m_isStandardOutput) m_files.Close(m_file);
  m_file = Platform::kNoFile;
}

// Cold path: keep it out of the inlined code.
[[gnu::cold]] void CDailyEventLog::StopForToday() {
  if (StoppedToday()) return;
  m_bytesToday = m_bytesAtStop = m_sizeLimit;
  std::memcpy(m_stoppedPath, m_path, sizeof m_stoppedPath);
  char warning[128];
  const int length = std::snprintf(
      warning, sizeof warning,
      "\nWARNING: File size limit of %u bytes reached! Logging stopped until next day.\n\n",
      static_cast<std::uint32_t>(m_sizeLimit));
  Append({warning, static_cast<std::size_t>(length)});
}

}  // namespace Vask
