#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Contract {

// Where the module under test keeps its log: under a temporary folder of this
// program natively, under the machine's common application data on Windows
// (which is the Wine prefix's). Make one before the module is loaded. Emptied
// of log files at the start.
class LogFolder {
 public:
  LogFolder();

  // The folder itself, whether it is there or not.
  static std::filesystem::path Path();

  // The log's lines since the start, over all files, without time stamps and
  // line ends: "Info: text".
  std::vector<std::string> Lines() const;

  // Whether the log has a line with this text in it.
  bool Has(const std::string& text) const;

  // How many lines have this text in them.
  std::size_t CountOf(const std::string& text) const;

  // Makes it impossible to create the folder, for the object's lifetime.
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
