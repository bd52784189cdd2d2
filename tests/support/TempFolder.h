#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace Vask::Tests {

// A new temporary folder. The destructor removes it with its contents. One thread may
// use it.
class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    do {
      m_folder = std::filesystem::temp_directory_path() /
                 ("corvane-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_folder));
  }
  ~TempFolder() {
    std::error_code leftBehind;
    std::filesystem::remove_all(m_folder, leftBehind);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The path in the agent's form: with backslashes, and without one at the end.
  [[nodiscard]] std::string Path() const {
    std::string path = m_folder.string();
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
  }
  [[nodiscard]] std::string Path(const std::string& name) const { return Path() + '\\' + name; }

  // The path in the system's own form.
  [[nodiscard]] const std::filesystem::path& NativePath() const { return m_folder; }

  // The bytes of a file in the folder, with the line ends of the disk. Empty if there is
  // no such file.
  [[nodiscard]] std::string Bytes(const std::string& name) const {
    std::ifstream file(m_folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // The line end of files in text mode.
#if defined(_WIN32)
  static constexpr char kLineEnd[] = "\r\n";
#else
  static constexpr char kLineEnd[] = "\n";
#endif

 private:
  std::filesystem::path m_folder;
};

}  // namespace Vask::Tests
