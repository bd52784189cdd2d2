#pragma once

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace Rehearsal {

// How a program ended.
struct Ending {
  enum class Kind { kExited, kTookTooLong, kNotStarted };
  Kind kind;
  DWORD code;  // its exit status, or the system's error if it was not started

  [[nodiscard]] bool Good() const { return kind == Kind::kExited && code == 0; }
  // "exit status 3", with the hexadecimal number of a crash.
  [[nodiscard]] std::string Text() const;
};

// A program that runs beside this one. Its output is appended to a file. All processes
// that it has started end with the object. One thread may use it.
class Command {
 public:
  // `line` is the whole command line. A program's path with blanks is in quotes.
  Command(std::wstring line, const std::filesystem::path& folder,
          const std::filesystem::path& output);
  ~Command();
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  // Waits until the program ends, and ends it if that takes longer.
  [[nodiscard]] Ending WaitForEnd(std::chrono::milliseconds limit);

 private:
  HANDLE m_job;
  PROCESS_INFORMATION m_process{};
  DWORD m_error = ERROR_SUCCESS;
};

// Runs a program to its end.
[[nodiscard]] Ending Run(const std::wstring& line, const std::filesystem::path& folder,
                         const std::filesystem::path& output, std::chrono::milliseconds limit);

[[nodiscard]] std::wstring InQuotes(const std::filesystem::path& path);

}  // namespace Rehearsal
