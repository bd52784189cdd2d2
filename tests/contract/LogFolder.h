#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Contract {

// The log folder of the module under test: natively in a temporary folder of this
// program, which is removed when the program ends; on Windows in the machine's common
// application data (that of the Wine prefix, which under ctest is the program's own).
// Create one before you load the module. The constructor removes old log
// files.
class LogFolder {
 public:
  LogFolder();

  // The path of the folder, even if it does not exist.
  static std::filesystem::path Path();

  // The lines of all log files, without time stamps and line ends: "Info: text".
  std::vector<std::string> Lines() const;

  // True if a line contains this text.
  bool Has(const std::string& text) const;

  // Number of lines that contain this text.
  std::size_t CountOf(const std::string& text) const;

  // While one lives, the folder cannot be created.
  class Blocked {
   public:
    explicit Blocked(const LogFolder& folder);
    ~Blocked();
    Blocked(const Blocked&) = delete;
    Blocked& operator=(const Blocked&) = delete;

   private:
    std::filesystem::path m_path;
    std::filesystem::path m_aside;
  };

 private:
  std::filesystem::path m_base;
};

}  // namespace Contract
