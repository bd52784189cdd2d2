#include "platform/Files.h"

#include <windows.h>
// They need the base header before them:
#include <objbase.h>
#include <shlobj.h>

#include <cstring>

#include "platform/UniqueHandle.h"
#include "platform/win32/FileTime.h"

namespace Vask::Platform {

namespace {

// A text that fits into this buffer with its line ends doubled is written in one
// piece.
constexpr std::size_t kTextBufferBytes = 8192;

struct SearchPolicy {
  using Type = HANDLE;
  static Type None() noexcept { return INVALID_HANDLE_VALUE; }
  static void Close(Type search) noexcept { FindClose(search); }
};

struct ShellItemPolicy {
  using Type = LPITEMIDLIST;
  static constexpr Type None() noexcept { return nullptr; }
  static void Close(Type item) noexcept { CoTaskMemFree(item); }
};

HANDLE AsHandle(FileHandle file) noexcept {
  return reinterpret_cast<HANDLE>(file);  // NOLINT(performance-no-int-to-ptr): kept as a number
}

FileHandle FromHandle(HANDLE handle) noexcept {
  return handle == nullptr ? kNoFile : reinterpret_cast<FileHandle>(handle);
}

// File systems that keep no creation time report 0.
std::int64_t FileSeconds(const FILETIME& time) noexcept {
  return FileTimeUnits(time) == 0 ? -1 : ToEpochSeconds(time);
}

bool WriteBytes(HANDLE file, const char* data, std::size_t length) noexcept {
  while (length > 0) {
    DWORD written = 0;
    const auto part = static_cast<DWORD>(length < MAXLONG ? length : MAXLONG);
    if (!WriteFile(file, data, part, &written, nullptr) || written == 0) return false;
    data += written;
    length -= written;
  }
  return true;
}

bool StripBackslash(char* path) noexcept {
  const std::size_t length = std::strlen(path);
  if (length > 0 && path[length - 1] == '\\') path[length - 1] = '\0';
  return path[0] != '\0';
}

class WindowsFiles final : public Files {
 public:
  bool IsFolder(const char* path) noexcept override {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }

  DriveKind Drive(const char* root) noexcept override {
    switch (GetDriveTypeA(root)) {
      case DRIVE_NO_ROOT_DIR:
        return DriveKind::NoRoot;
      case DRIVE_REMOVABLE:
        return DriveKind::Removable;
      case DRIVE_FIXED:
        return DriveKind::Fixed;
      case DRIVE_REMOTE:
        return DriveKind::Remote;
      case DRIVE_CDROM:
        return DriveKind::CdRom;
      case DRIVE_RAMDISK:
        return DriveKind::RamDisk;
      default:
        return DriveKind::Unknown;
    }
  }

  bool CreateFolder(const char* path) noexcept override {
    return CreateDirectoryA(path, nullptr) != 0;
  }

  bool List(const char* pattern, FileVisitor visit, void* context) noexcept override {
    WIN32_FIND_DATAA found{};
    const UniqueHandle<SearchPolicy> search(FindFirstFileA(pattern, &found));
    if (!search.Valid()) return true;
    do {
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
      const FileEntry entry{found.cFileName, FileSeconds(found.ftCreationTime),
                            FileSeconds(found.ftLastWriteTime)};
      if (!visit(entry, context)) return false;
    } while (FindNextFileA(search.Get(), &found));
    return true;
  }

  bool Delete(const char* path) noexcept override { return DeleteFileA(path) != 0; }

  FileHandle OpenForAppend(const char* path) noexcept override {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return FromHandle(CreateFileA(path, FILE_APPEND_DATA, kShareAll, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
  }

  bool Append(FileHandle file, const char* text, std::size_t length) noexcept override {
    char buffer[kTextBufferBytes];
    std::size_t used = 0;
    for (const char* const end = text + length; text != end; ++text) {
      if (used + 2 > sizeof buffer) {
        if (!WriteBytes(AsHandle(file), buffer, used)) return false;
        used = 0;
      }
      if (*text == '\n') buffer[used++] = '\r';
      buffer[used++] = *text;
    }
    return WriteBytes(AsHandle(file), buffer, used);
  }

  std::uint64_t Length(FileHandle file) noexcept override {
    LARGE_INTEGER size{};
    return GetFileSizeEx(AsHandle(file), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
  }

  void Close(FileHandle file) noexcept override { CloseHandle(AsHandle(file)); }

  // A service has no standard output.
  FileHandle StandardOutput() noexcept override {
    return FromHandle(GetStdHandle(STD_OUTPUT_HANDLE));
  }

  bool CurrentFolder(char* path, std::size_t capacity) noexcept override {
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(capacity), path);
    return length != 0 && length < capacity && StripBackslash(path);
  }

  bool CommonApplicationData(char* path, std::size_t capacity) noexcept override {
    LPITEMIDLIST found = nullptr;
    if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_COMMON_APPDATA | CSIDL_FLAG_CREATE,
                                          &found))) {
      return false;
    }
    const UniqueHandle<ShellItemPolicy> item(found);
    char folder[MAX_PATH] = "";
    if (!SHGetPathFromIDListA(item.Get(), folder) || !StripBackslash(folder)) return false;
    const std::size_t length = std::strlen(folder);
    if (length >= capacity) return false;
    std::memcpy(path, folder, length + 1);
    return true;
  }
};

constinit WindowsFiles g_files;

}  // namespace

Files& SystemFiles() noexcept {
  return g_files;
}

// The run-time library's isatty treats every character device as a terminal, also NUL.
// Only a console has a mode.
bool StandardInputIsTerminal() noexcept {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

}  // namespace Vask::Platform
