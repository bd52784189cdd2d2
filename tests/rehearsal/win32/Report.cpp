#include "tests/rehearsal/win32/Report.h"

#include <deque>
#include <fstream>

namespace Rehearsal {
namespace {

constexpr std::size_t kShownLines = 15;

}  // namespace

Report::Report(const std::filesystem::path& file) : m_file(_wfopen(file.c_str(), L"w")) {}

Report::~Report() {
  if (m_file != nullptr) static_cast<void>(std::fclose(m_file));
}

void Report::Print(const std::string& text) {
  for (std::FILE* const output : {stdout, m_file}) {
    if (output == nullptr) continue;
    static_cast<void>(std::fputs(text.c_str(), output));
    static_cast<void>(std::fflush(output));
  }
}

void Report::Say(const std::string& text) {
  Print(text + '\n');
}

void Report::Begin(const std::string& name) {
  Print(name + " ... ");
  m_began = std::chrono::steady_clock::now();
}

void Report::End(const std::string& failure) {
  const auto took =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - m_began);
  const std::string time = " (" + std::to_string(took.count()) + " s)";
  if (failure.empty()) {
    ++m_passed;
    Say("passed" + time);
  } else {
    ++m_failed;
    Say("FAILED" + time + ": " + failure);
  }
}

bool Report::Close() {
  Say(std::to_string(m_passed) + " passed, " + std::to_string(m_failed) + " failed");
  return m_failed == 0 && m_passed > 0;
}

std::string LastLines(const std::filesystem::path& file) {
  std::ifstream input(file);
  std::deque<std::string> lines;
  for (std::string line; std::getline(input, line);) {
    lines.push_back(line);
    if (lines.size() > kShownLines) lines.pop_front();
  }
  std::string text;
  for (const std::string& line : lines) text += "\n  " + line;
  return text;
}

}  // namespace Rehearsal
