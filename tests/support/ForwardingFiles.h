#pragma once

#include "platform/Files.h"

namespace Vask::Tests {

// Forwards every call to another Files object. A test derives from it and overrides one or
// two operations. As safe to share between threads as the other object.
class ForwardingFiles : public Platform::Files {
 public:
  // `base` must outlive this object.
  explicit ForwardingFiles(Platform::Files& base = Platform::SystemFiles()) : m_base(base) {}

  bool IsFolder(const char* path) noexcept override { return m_base.IsFolder(path); }
  Platform::DriveKind Drive(const char* root) noexcept override { return m_base.Drive(root); }
  bool CreateFolder(const char* path) noexcept override { return m_base.CreateFolder(path); }
  bool List(const char* pattern, Platform::FileVisitor visit, void* context) noexcept override {
    return m_base.List(pattern, visit, context);
  }
  bool Delete(const char* path) noexcept override { return m_base.Delete(path); }
  Platform::FileHandle OpenForAppend(const char* path) noexcept override {
    return m_base.OpenForAppend(path);
  }
  bool Append(Platform::FileHandle file, const char* text, std::size_t length) noexcept override {
    return m_base.Append(file, text, length);
  }
  std::uint64_t Length(Platform::FileHandle file) noexcept override { return m_base.Length(file); }
  void Close(Platform::FileHandle file) noexcept override { m_base.Close(file); }
  Platform::FileHandle StandardOutput() noexcept override { return m_base.StandardOutput(); }
  bool CurrentFolder(char* path, std::size_t capacity) noexcept override {
    return m_base.CurrentFolder(path, capacity);
  }
  bool CommonApplicationData(char* path, std::size_t capacity) noexcept override {
    return m_base.CommonApplicationData(path, capacity);
  }

 protected:
  ~ForwardingFiles() = default;

 private:
  Platform::Files& m_base;
};

}  // namespace Vask::Tests
