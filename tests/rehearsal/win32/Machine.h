#pragma once

#include <filesystem>
#include <string>

namespace Rehearsal {

// Each of these returns why the rehearsal must not run, or an empty text.

// The agent is installed, or the agent's port is in use.
[[nodiscard]] std::string WhyNotHere();
// For /service: rights, service and package.
[[nodiscard]] std::string WhyNoService(const std::filesystem::path& root);

// The package in the folder of the rehearsal; empty if there is none.
[[nodiscard]] std::filesystem::path PackageIn(const std::filesystem::path& root);

[[nodiscard]] bool ServiceIsRunning();
void StopService();

// The agent's folder in the machine's common application data. The tested DLL always writes
// its log there. A mark in the folder of the rehearsal says that a rehearsal has made the
// folder, so that it also removes what an interrupted rehearsal has left. One thread may use it.
class DataFolder {
 public:
  explicit DataFolder(const std::filesystem::path& root);

  // Returns why the folder must not be used, or an empty text.
  [[nodiscard]] std::string Take();
  // Moves the agent's log files to a folder, and removes everything else.
  void Empty(const std::filesystem::path& logs) const;
  // Removes the mark. The folder must be empty.
  void Release() const;

 private:
  void Remove() const;

  std::filesystem::path m_folder;
  std::filesystem::path m_aside;  // the contract tests rename the folder to this for a moment
  std::filesystem::path m_mark;
};

}  // namespace Rehearsal
