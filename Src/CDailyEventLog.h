#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Src/LogFolder.h"
#include "platform/Clock.h"
#include "platform/Files.h"

namespace Vask {

// The file half of the daily log: one file per local day. It appends every piece with
// one system call and buffers nothing. The first write of a new day opens the new file.
// A line allocates nothing.
//
// A log named "stdout" writes to the process's standard output instead. It has no
// folder, no rotation, no clean-up and no size limit, and is never closed.
//
// Not thread-safe: the daily log's lock guards it. It reports failures only by its return
// values, because reports are written to it.
class CDailyEventLog {
 public:
  // The longest path of a log file, its terminating zero included.
  static constexpr std::size_t kPathCapacity = 261;
  static constexpr std::uint32_t kKeepAll = 0xFFFFFFFFu;
  static constexpr std::uint32_t kDefaultDaysToKeep = 30;

  CDailyEventLog(Platform::Clock& clock, Platform::Files& files) noexcept;
  ~CDailyEventLog();
  CDailyEventLog(const CDailyEventLog&) = delete;
  CDailyEventLog& operator=(const CDailyEventLog&) = delete;

  // Closes the present file and opens today's in `folder`. Null means the current
  // working folder, "stdout" the standard output. Creates the folder and its parents if
  // they are missing, and sets the days to keep to 30. Returns false if the path is
  // empty or too long or the file cannot be opened; then there is no file until the next
  // Open or SetDaysToKeep.
  [[nodiscard]] bool Open(const char* folder);

  // kKeepAll switches the clean-up off. If the log has been opened, this opens today's
  // file again, which also deletes files that are now too old.
  void SetDaysToKeep(std::uint32_t days);

  // Bytes that may be written in one day, 0 for no limit. The log drops the piece
  // that would reach the limit and all later pieces of that day, and writes one
  // warning to the file. Opening the log again on that day changes none of that.
  void SetSizeLimit(std::uint32_t bytes) noexcept;

  [[nodiscard]] bool IsOpen() const noexcept { return m_file != Platform::kNoFile; }
  [[nodiscard]] const LogFolder& Folder() const noexcept { return m_folder; }

  // Writes one line in its three pieces. If the new day's file cannot be opened, the
  // rest of the line is dropped.
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

  // The members that every piece uses come first, side by side.
  Platform::Clock& m_clock;
  Platform::Files& m_files;
  Platform::FileHandle m_file = Platform::kNoFile;
  bool m_isStandardOutput = false;
  std::int64_t m_nextRotation = 0;  // seconds since the epoch; of a day's file
  std::uint64_t m_bytesToday = 0;
  std::uint64_t m_sizeLimit = kNoSizeLimit;

  // The file that reached the size limit last, and its count then.
  char m_stoppedPath[kPathCapacity] = {};
  std::uint64_t m_bytesAtStop = 0;
  std::uint32_t m_daysToKeep = 0;
  LogFolder m_folder;
  char* m_date = nullptr;           // into m_path; null until the first Open
  char m_path[kPathCapacity] = {};  // folder, "Log", date, ".log"
};

// Every piece of every line runs through these, so they are inline and call nothing but
// the clock and the file.

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
