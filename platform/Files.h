#pragma once

#include <cstddef>
#include <cstdint>

namespace Vask::Platform {

// An open file: the system's handle or descriptor, -1 for none.
using FileHandle = std::intptr_t;
inline constexpr FileHandle kNoFile = -1;

enum class DriveKind { Unknown, NoRoot, Removable, Fixed, Remote, CdRom, RamDisk };

// One file of a listing. Times are in seconds since the epoch, -1 if unknown.
// `name` is valid during the visit only.
struct FileEntry {
  const char* name;
  std::int64_t createdAt;
  std::int64_t writtenAt;
};
using FileVisitor = bool (*)(const FileEntry& file, void* context);

// Files and folders. Every path uses backslashes, on every system; the
// implementation for a system with other separators translates them. Any thread
// may call any operation.
class Files {
 public:
  [[nodiscard]] virtual bool IsFolder(const char* path) noexcept = 0;
  // Returns the kind of the drive that a root ("C:\", "\\server\share\") names.
  [[nodiscard]] virtual DriveKind Drive(const char* root) noexcept = 0;
  // Creates one folder whose parent exists. False on failure, also if the folder
  // exists already.
  [[nodiscard]] virtual bool CreateFolder(const char* path) noexcept = 0;

  // Calls `visit` for every file (not folder) that matches the path, whose last
  // part may hold * and ?. Stops and returns false if `visit` returns false.
  // Otherwise returns true, also if there is no such folder.
  virtual bool List(const char* pattern, FileVisitor visit, void* context) noexcept = 0;
  virtual bool Delete(const char* path) noexcept = 0;

  // Opens a file for appending and creates it if needed. Other programs may
  // read, append, rename and delete it meanwhile. kNoFile on failure.
  [[nodiscard]] virtual FileHandle OpenForAppend(const char* path) noexcept = 0;
  // Writes in text mode: every line feed becomes the system's line end (CR LF on
  // Windows). One call appends up to 4,096 bytes in one piece, which the writes
  // of others cannot split. False if not everything was written. Never
  // allocates.
  virtual bool Append(FileHandle file, const char* text, std::size_t length) noexcept = 0;
  // Returns the present length in bytes, 0 on failure.
  [[nodiscard]] virtual std::uint64_t Length(FileHandle file) noexcept = 0;
  virtual void Close(FileHandle file) noexcept = 0;
  // The process's standard output, for Append. Do not close it.
  [[nodiscard]] virtual FileHandle StandardOutput() noexcept = 0;

  // Both write a path without a trailing backslash into a buffer of `capacity`
  // bytes. False if the system reports an error, or the path is empty or does
  // not fit.
  [[nodiscard]] virtual bool CurrentFolder(char* path, std::size_t capacity) noexcept = 0;
  // The folder for application data of all users, created if missing. On
  // Windows the shell names it; elsewhere it is $CORVANE_DATA if set, else
  // /var/lib.
  [[nodiscard]] virtual bool CommonApplicationData(char* path, std::size_t capacity) noexcept = 0;

 protected:
  ~Files() = default;
};

// The machine's files. The object lives as long as the process.
Files& SystemFiles() noexcept;

// Whether the standard input is a terminal. For programs; any thread.
[[nodiscard]] bool StandardInputIsTerminal() noexcept;

}  // namespace Vask::Platform
