#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Src/LogFolder.h"
#include "platform/Clock.h"
#include "platform/Files.h"

namespace Vask {

// The file half of the daily log: one file per local day, appended to piece by
// piece, each piece on its way to the disk when the call returns. Rotation is
// lazy, at the first write of a new day. Nothing is buffered here and a steady
// line allocates nothing.
//
// A log named "stdout" writes to the process's standard output instead: no
// folder, no rotation, no clean-up, no size limit, never closed.
//
// Not thread-safe: the daily log's lock guards it. No failure is reported
// anywhere but by the answers: this is where reports go.
class CDailyEventLog {
 public:
  // Longest path of a log file, its terminating zero included.
  static constexpr std::size_t kPathCapacity = 261;
  static constexpr std::uint32_t kKeepAll = 0xFFFFFFFFu;
  static constexpr std::uint32_t kDefaultDaysToKeep = 30;

  CDailyEventLog(Platform::Clock& clock, Platform::Files& files) noexcept;
  ~CDailyEventLog();
  CDailyEventLog(const CDailyEventLog&) = delete;
  CDailyEventLog& operator=(const CDailyEventLog&) = delete;

  // Closes the present file and opens today's in `folder`, which is created
  // with its parents if missing; null means the current working folder,
  // "stdout" the standard output. Sets the days to keep to 30. False for an
  // empty path, for one that is too long, and when the file cannot be opened;
  // then there is no file until the next Open or SetDaysToKeep.
  [[nodiscard]] bool Open(const char* folder);

  // kKeepAll switches the clean-up off. Once the log has been opened this opens
  // today's file again, which also deletes files that are now too old.
  void SetDaysToKeep(std::uint32_t days);

  // Bytes that may be written in one day, 0 for no limit. The log drops the piece
  // that would reach the limit and all later pieces of that day, and writes one
  // warning to the file. Opening the log again on that day changes none of that.
  void SetSizeLimit(std::uint32_t bytes) noexcept;

  [[nodiscard]] bool IsOpen() const noexcept { return m_file != Platform::kNoFile; }
  [[nodiscard]] const LogFolder& Folder() const noexcept { return m_folder; }

  // Writes one line in its three pieces. When the day's file cannot be opened,
  // the rest of the line is dropped.
  void WriteLine(std::string_view timeStamp, std::string_view prefix, std::string_view text);

 private:
  static constexpr std::uint64_t kNoSizeLimit = UINT64_MAX;

  bool OpenStandardOutput();
  bool OpenFolder(const char* folder);
  bool OpenToday();
  void Close() noexcept;
  [[nodiscard]] bool StoppedToday() const noexcept;
  void WritePiece(std::string_view piece);
  void StopForToday();
  void Append(std::string_view bytes) noexcept;

  // What every piece looks at stands together.
  Platform::Clock& m_clock;
  Platform::Files& m_files;
  Platform::FileHandle m_file = Platform::kNoFile;
  bool m_isStandardOutput = false;
  std::int64_t m_nextRotation = 0;  // seconds since the epoch; of a day's file
  std::uint64_t m_bytesToday = 0;
  std::uint64_t m_sizeLimit = kNoSizeLimit;

  char m_stoppedDate[kLogDateLength] = {};  // of the day on which the size limit was reached
  std::uint32_t m_daysToKeep = 0;
  LogFolder m_folder;
  char* m_date = nullptr;           // into m_path; null until the first Open
  char m_path[kPathCapacity] = {};  // folder, "Log", date, ".log"
};

// Every line of the log goes this road, most of it three times: it is straight,
// and nothing is called but the clock and the file.

inline void CDailyEventLog::WriteLine(std::string_view timeStamp, std::string_view prefix,
                                      std::string_view text) {
  WritePiece(timeStamp);
  WritePiece(prefix);
  WritePiece(text);
}

inline void CDailyEventLog::WritePiece(std::string_view piece) {
  if (!IsOpen()) [[unlikely]]
    return;
  if (!m_isStandardOutput) {
    if (m_clock.EpochSeconds() >= m_nextRotation && !OpenToday()) [[unlikely]]
      return;
    const std::uint64_t sum = m_bytesToday + piece.size();
    if (sum >= m_sizeLimit) [[unlikely]]
      return StopForToday();
    m_bytesToday = sum;
  }
  Append(piece);
}

inline void CDailyEventLog::Append(std::string_view bytes) noexcept {
  m_files.Append(m_file, bytes.data(), bytes.size());
}

}  // namespace Vask
