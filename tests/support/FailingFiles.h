#pragma once

#include "tests/support/FaultPlan.h"
#include "tests/support/ForwardingFiles.h"

namespace Vask::Tests {

// Forwards to another disk, but fails the n-th operation that can fail, which then
// does not change the disk. As safe to share between threads as the other disk.
class FailingFiles final : public ForwardingFiles {
 public:
  FailingFiles(Platform::Files& base, FaultPlan& plan) : ForwardingFiles(base), m_plan(plan) {}

  bool IsFolder(const char* path) noexcept override {
    return !m_plan.Fails() && ForwardingFiles::IsFolder(path);
  }
  Platform::DriveKind Drive(const char* root) noexcept override {
    return m_plan.Fails() ? Platform::DriveKind::Unknown : ForwardingFiles::Drive(root);
  }
  bool CreateFolder(const char* path) noexcept override {
    return !m_plan.Fails() && ForwardingFiles::CreateFolder(path);
  }
  // A folder that cannot be read behaves like one without files.
  bool List(const char* pattern, Platform::FileVisitor visit, void* context) noexcept override {
    return m_plan.Fails() || ForwardingFiles::List(pattern, visit, context);
  }
  bool Delete(const char* path) noexcept override {
    return !m_plan.Fails() && ForwardingFiles::Delete(path);
  }
  Platform::FileHandle OpenForAppend(const char* path) noexcept override {
    return m_plan.Fails() ? Platform::kNoFile : ForwardingFiles::OpenForAppend(path);
  }
  bool Append(Platform::FileHandle file, const char* text, std::size_t length) noexcept override {
    return !m_plan.Fails() && ForwardingFiles::Append(file, text, length);
  }
  std::uint64_t Length(Platform::FileHandle file) noexcept override {
    return m_plan.Fails() ? 0 : ForwardingFiles::Length(file);
  }
  Platform::FileHandle StandardOutput() noexcept override {
    return m_plan.Fails() ? Platform::kNoFile : ForwardingFiles::StandardOutput();
  }
  bool CurrentFolder(char* path, std::size_t capacity) noexcept override {
    return !m_plan.Fails() && ForwardingFiles::CurrentFolder(path, capacity);
  }
  bool CommonApplicationData(char* path, std::size_t capacity) noexcept override {
    return !m_plan.Fails() && ForwardingFiles::CommonApplicationData(path, capacity);
  }

 private:
  FaultPlan& m_plan;
};

}  // namespace Vask::Tests
