#pragma once

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

namespace Rehearsal {

// Prints what happens and counts it, on the console and in a file. One thread may use it.
class Report {
 public:
  explicit Report(const std::filesystem::path& file);
  ~Report();
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  void Say(const std::string& text);

  // Prints the name of a step before it runs.
  void Begin(const std::string& name);
  // Ends the step. It has passed if `failure` is empty.
  void End(const std::string& failure);

  // Prints "N passed, N failed". Returns true if all steps, at least one, have passed.
  [[nodiscard]] bool Close();

 private:
  void Print(const std::string& text);

  std::FILE* m_file;
  std::chrono::steady_clock::time_point m_began;
  int m_passed = 0;
  int m_failed = 0;
};

// The last lines of a file, each after two blanks.
[[nodiscard]] std::string LastLines(const std::filesystem::path& file);

}  // namespace Rehearsal
