#pragma once

#include <cstring>
#include <string>

#include "tests/support/ForwardingFiles.h"
#include "tests/support/TempFolder.h"

namespace Vask::Tests {

// The machine's disk, but with a temporary folder for the data of all users. The
// destructor removes the folder. Any thread may use it.
class DataFolder final : public ForwardingFiles {
 public:
  bool CommonApplicationData(char* path, std::size_t capacity) noexcept override {
    if (m_path.size() >= capacity) return false;
    std::memcpy(path, m_path.c_str(), m_path.size() + 1);
    return true;
  }

  // The path in the system's own form.
  [[nodiscard]] const std::filesystem::path& NativePath() const { return m_folder.NativePath(); }

 private:
  TempFolder m_folder;
  const std::string m_path = m_folder.Path();
};

}  // namespace Vask::Tests
