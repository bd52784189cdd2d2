#pragma once

#include <cstddef>
#include <cstdint>

namespace Vask::Platform {

// An open file; the system's handle or descriptor, -1 for none.
using FileHandle = std::intptr_t;
inline constexpr FileHandle kNoFile = -1;

enum class DriveKind { Unknown, NoRoot, Removable, Fixed, Remote, CdRom, RamDisk };

// One file of a listing. Times in seconds since the epoch, -1 where unknown.
// `name` is valid during the visit only.
struct FileEntry {
  const char* name;
  std::int64_t createdAt;
  std::int64_t writtenAt;
};
using FileVisitor = bool (*)(const FileEntry& file, void* context);

// Files and folders. Every path uses backslashes, on every system; an
// implementation for a system with other separators translates at this border.
// All operations may be called from any thread.
class Files {
 public:
  [[nodiscard]] virtual bool IsFolder(const char* path) noexcept = 0;
  // Kind of the drive that a root ("C:\", "\\server\share\") names.
  [[nodiscard]] virtual DriveKind Drive(const char* root) noexcept = 0;
  // Creates one folder whose parent exists; false when it cannot, also when it is there.
  [[nodiscard]] virtual bool CreateFolder(const char* path) noexcept = 0;

  // Calls `visit` for every file (no folder) that matches folder + pattern
  // (with * and ?) until it answers false; false exactly then.
  virtual bool List(const char* pattern, FileVisitor visit, void* context) noexcept = 0;
  virtual bool Delete(const char* path) noexcept = 0;

  // Opens for appending, creating the file if needed; others may read, append,
  // rename and delete meanwhile. kNoFile on failure.
  [[nodiscard]] virtual FileHandle OpenForAppend(const char* path) noexcept = 0;
  // Text mode: every line feed is written as the system's line end (CR LF on
  // Windows). One call appends its bytes in one piece, which nobody else's can
  // split, as long as they are at most 4,096. False when not all of it was
  // written. Never allocates.
  virtual bool Append(FileHandle file, const char* text, std::size_t length) noexcept = 0;
  // Present length in bytes; 0 when it cannot be had.
  [[nodiscard]] virtual std::uint64_t Length(FileHandle file) noexcept = 0;
  virtual void Close(FileHandle file) noexcept = 0;
  // The process's standard output, never closed; Append works on it.
  [[nodiscard]] virtual FileHandle StandardOutput() noexcept = 0;

  // Both write a path without a trailing backslash into a buffer of `capacity`
  // bytes; false when it cannot be had, is empty or does not fit.
  [[nodiscard]] virtual bool CurrentFolder(char* path, std::size_t capacity) noexcept = 0;
  // The folder for application data of all users, created if missing. On
  // Windows the shell's answer; elsewhere $CORVANE_DATA if set, else /var/lib.
  [[nodiscard]] virtual bool CommonApplicationData(char* path, std::size_t capacity) noexcept = 0;

 protected:
  ~Files() = default;
};

// The machine's own. Lives as long as the process.
Files& SystemFiles() noexcept;

}  // namespace Vask::Platform
