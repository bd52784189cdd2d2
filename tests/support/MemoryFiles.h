#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Files.h"

namespace Vask::Tests {

// A disk in memory. A test fills it, reads it and switches faults on. Names are
// case-sensitive. For one thread at a time.
class MemoryFiles final : public Platform::Files {
 public:
  struct File {
    std::string bytes;
    std::int64_t createdAt = -1;
    std::int64_t writtenAt = 4'000'000'000;  // 2096: later than any test's clock
  };

  std::map<std::string, File> files;  // by full path
  std::set<std::string> folders;      // without a trailing backslash
  std::vector<std::string> created;   // folders, in the order of their creation
  std::set<std::string> refused;      // folders that cannot be created
  Platform::DriveKind drive = Platform::DriveKind::Fixed;
  std::vector<std::string> rootsAsked;  // each root that was passed to Drive
  std::string console;                  // the text of the standard output
  std::string currentFolder = "C:\\current";
  bool hasConsole = true;
  bool opensFiles = true;
  std::vector<std::string> appended;  // each piece, of all files
  std::function<void()> afterAppend;
  std::uint32_t opened = 0;
  std::uint32_t closed = 0;  // calls of Close, also for what was not open

  bool IsFolder(const char* path) noexcept override;
  Platform::DriveKind Drive(const char* root) noexcept override {
    rootsAsked.emplace_back(root);
    return drive;
  }
  bool CreateFolder(const char* path) noexcept override;
  bool List(const char* pattern, Platform::FileVisitor visit, void* context) noexcept override;
  bool Delete(const char* path) noexcept override;
  Platform::FileHandle OpenForAppend(const char* path) noexcept override;
  bool Append(Platform::FileHandle file, const char* text, std::size_t length) noexcept override;
  std::uint64_t Length(Platform::FileHandle file) noexcept override;
  void Close(Platform::FileHandle file) noexcept override;
  Platform::FileHandle StandardOutput() noexcept override;
  bool CurrentFolder(char* path, std::size_t capacity) noexcept override;
  bool CommonApplicationData(char*, std::size_t) noexcept override { return false; }

 private:
  std::string* Target(Platform::FileHandle file);

  std::map<Platform::FileHandle, std::string> m_open;  // handle to path
};

}  // namespace Vask::Tests
