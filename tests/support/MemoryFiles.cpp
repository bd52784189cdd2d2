#include "tests/support/MemoryFiles.h"

#include <cstring>

namespace Vask::Tests {

namespace {

constexpr Platform::FileHandle kConsole = 1;
constexpr Platform::FileHandle kFirstFile = 100;

std::string WithoutTrailingBackslash(std::string path) {
  if (!path.empty() && path.back() == '\\') path.pop_back();
  return path;
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('\\'));
}

// For patterns with one star, like the log's.
bool Matches(const std::string& path, const std::string& pattern) {
  const std::size_t star = pattern.find('*');
  const std::string head = pattern.substr(0, star);
  const std::string tail = pattern.substr(star + 1);
  return path.size() >= head.size() + tail.size() && path.starts_with(head) &&
         path.ends_with(tail) && path.find('\\', head.size()) == std::string::npos;
}

}  // namespace

bool MemoryFiles::IsFolder(const char* path) noexcept {
  return folders.contains(WithoutTrailingBackslash(path));
}

bool MemoryFiles::CreateFolder(const char* path) noexcept {
  if (refused.contains(path) || !folders.insert(WithoutTrailingBackslash(path)).second) {
    return false;
  }
  created.emplace_back(path);
  return true;
}

bool MemoryFiles::List(const char* pattern, Platform::FileVisitor visit, void* context) noexcept {
  const auto snapshot = files;
  for (const auto& [path, file] : snapshot) {
    if (!Matches(path, pattern)) continue;
    const std::string name = path.substr(path.rfind('\\') + 1);
    if (!visit({name.c_str(), file.createdAt, file.writtenAt}, context)) return false;
  }
  return true;
}

bool MemoryFiles::Delete(const char* path) noexcept {
  return files.erase(path) == 1;
}

Platform::FileHandle MemoryFiles::OpenForAppend(const char* path) noexcept {
  if (!opensFiles || !folders.contains(FolderOf(path))) return Platform::kNoFile;
  files[path];
  const Platform::FileHandle file = kFirstFile + static_cast<Platform::FileHandle>(opened);
  ++opened;
  m_open[file] = path;
  return file;
}

bool MemoryFiles::Append(Platform::FileHandle file, const char* text, std::size_t length) noexcept {
  std::string* const target = Target(file);
  if (target == nullptr) return false;
  target->append(text, length);
  appended.emplace_back(text, length);
  if (afterAppend) afterAppend();
  return true;
}

std::uint64_t MemoryFiles::Length(Platform::FileHandle file) noexcept {
  const std::string* const target = Target(file);
  return target == nullptr ? 0 : target->size();
}

void MemoryFiles::Close(Platform::FileHandle file) noexcept {
  m_open.erase(file);
  ++closed;
}

Platform::FileHandle MemoryFiles::StandardOutput() noexcept {
  return hasConsole ? kConsole : Platform::kNoFile;
}

bool MemoryFiles::CurrentFolder(char* path, std::size_t capacity) noexcept {
  if (currentFolder.empty() || currentFolder.size() >= capacity) return false;
  std::memcpy(path, currentFolder.c_str(), currentFolder.size() + 1);
  return true;
}

std::string* MemoryFiles::Target(Platform::FileHandle file) {
  if (file == kConsole) return &console;
  const auto open = m_open.find(file);
  if (open == m_open.end()) return nullptr;
  const auto found = files.find(open->second);
  return found == files.end() ? nullptr : &found->second.bytes;
}

}  // namespace Vask::Tests
