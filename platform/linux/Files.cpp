#include "platform/Files.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/UniqueHandle.h"

namespace Vask::Platform {

namespace {

constexpr std::size_t kPathCapacity = 4096;  // PATH_MAX of Linux

constexpr mode_t kFileMode = 0644;
constexpr mode_t kFolderMode = 0755;

struct Directory {
  using Type = DIR*;
  static constexpr Type None() noexcept { return nullptr; }
  static void Close(Type directory) noexcept { closedir(directory); }
};

bool IsDriveLetter(char c) noexcept {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Converts a path of the agent to the system's form: "C:\a\b" becomes "/a/b".
// The drive is ignored, because this system has one tree. Empty if the path is
// too long.
class NativePath {
 public:
  explicit NativePath(const char* path) noexcept {
    if (IsDriveLetter(path[0]) && path[1] == ':') path += 2;
    const std::size_t length = std::strlen(path);
    if (length >= kPathCapacity) return;
    std::replace_copy(path, path + length + 1, m_text, '\\', '/');
  }

  const char* Text() const noexcept { return m_text; }
  char* Text() noexcept { return m_text; }

 private:
  char m_text[kPathCapacity] = "";
};

// Converts a path to the agent's form. False if it does not fit or is empty.
bool ToAgentPath(const char* nativePath, char* path, std::size_t capacity) noexcept {
  std::size_t length = std::strlen(nativePath);
  while (length > 0 && nativePath[length - 1] == '/') --length;
  if (length == 0 || length >= capacity) return false;
  std::replace_copy(nativePath, nativePath + length, path, '/', '\\');
  path[length] = '\0';
  return true;
}

bool IsNativeFolder(const char* nativePath) noexcept {
  struct stat state {};
  return stat(nativePath, &state) == 0 && S_ISDIR(state.st_mode);
}

// Whether a name matches a pattern of *, ? and plain characters. After a mismatch
// the last * takes one more character; earlier ones need not change.
bool Matches(const char* pattern, const char* name) noexcept {
  const char* afterStar = nullptr;
  const char* retry = nullptr;
  while (*name != '\0') {
    if (*pattern == '*') {
      afterStar = ++pattern;
      retry = name;
    } else if (*pattern == '?' || *pattern == *name) {
      ++pattern;
      ++name;
    } else if (afterStar != nullptr) {
      pattern = afterStar;
      name = ++retry;
    } else {
      return false;
    }
  }
  while (*pattern == '*') ++pattern;
  return *pattern == '\0';
}

// False if it is not a file.
bool Describe(int folder, const char* name, FileEntry& entry) noexcept {
  struct statx state {};
  if (statx(folder, name, 0, STATX_TYPE | STATX_MTIME | STATX_BTIME, &state) != 0) return false;
  if (!S_ISREG(state.stx_mode)) return false;
  const bool knowsBirth = (state.stx_mask & STATX_BTIME) != 0;
  entry = {name, knowsBirth ? state.stx_btime.tv_sec : -1, state.stx_mtime.tv_sec};
  return true;
}

class PosixFiles final : public Files {
 public:
  bool IsFolder(const char* path) noexcept override {
    return IsNativeFolder(NativePath(path).Text());
  }

  // The tree always exists. A server's share exists if it is mounted under its own
  // name.
  DriveKind Drive(const char* root) noexcept override {
    return IsFolder(root) ? DriveKind::Fixed : DriveKind::NoRoot;
  }

  bool CreateFolder(const char* path) noexcept override {
    return mkdir(NativePath(path).Text(), kFolderMode) == 0;
  }

  bool List(const char* pattern, FileVisitor visit, void* context) noexcept override {
    NativePath path(pattern);
    char* const slash = std::strrchr(path.Text(), '/');
    const char* const namePattern = slash == nullptr ? path.Text() : slash + 1;
    const UniqueHandle<Directory> directory(OpenFolderOf(path, slash));
    if (!directory.Valid()) return true;
    while (const dirent* const found = readdir(directory.Get())) {
      FileEntry entry{};
      if (!Matches(namePattern, found->d_name)) continue;
      if (!Describe(dirfd(directory.Get()), found->d_name, entry)) continue;
      if (!visit(entry, context)) return false;
    }
    return true;
  }

  bool Delete(const char* path) noexcept override { return unlink(NativePath(path).Text()) == 0; }

  FileHandle OpenForAppend(const char* path) noexcept override {
    return open(NativePath(path).Text(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kFileMode);
  }

  [[gnu::hot]] bool Append(FileHandle file, const char* text,
                           std::size_t length) noexcept override {
    for (;;) {
      const ssize_t written = write(static_cast<int>(file), text, length);
      if (written == static_cast<ssize_t>(length)) return true;
      if (written >= 0) {
        text += written;
        length -= static_cast<std::size_t>(written);
      } else if (errno != EINTR) {
        return false;
      }
    }
  }

  std::uint64_t Length(FileHandle file) noexcept override {
    struct stat state {};
    if (fstat(static_cast<int>(file), &state) != 0) return 0;
    return static_cast<std::uint64_t>(state.st_size);
  }

  void Close(FileHandle file) noexcept override { close(static_cast<int>(file)); }

  FileHandle StandardOutput() noexcept override { return STDOUT_FILENO; }

  bool CurrentFolder(char* path, std::size_t capacity) noexcept override {
    char native[kPathCapacity];
    return getcwd(native, sizeof native) != nullptr && ToAgentPath(native, path, capacity);
  }

  bool CommonApplicationData(char* path, std::size_t capacity) noexcept override {
    const char* folder = std::getenv("CORVANE_DATA");
    if (folder == nullptr || *folder == '\0') folder = "/var/lib";
    // If this fails, the use of the folder fails and is reported.
    static_cast<void>(mkdir(folder, kFolderMode));
    return ToAgentPath(folder, path, capacity);
  }

 private:
  // Opens the folder before the last slash of the path, or the current folder if
  // there is no slash.
  static DIR* OpenFolderOf(NativePath& path, char* slash) noexcept {
    if (slash == nullptr) return opendir(".");
    if (slash == path.Text()) return opendir("/");
    *slash = '\0';
    return opendir(path.Text());
  }
};

constinit PosixFiles g_files;

}  // namespace

Files& SystemFiles() noexcept {
  return g_files;
}

bool StandardInputIsTerminal() noexcept {
  return isatty(STDIN_FILENO) != 0;
}

}  // namespace Vask::Platform
