#include "tests/contract/LogFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "platform/Files.h"
#include "tests/support/TempFolder.h"

namespace Contract {

namespace fs = std::filesystem;

namespace {

#if !defined(_WIN32)
constexpr char kDataVariable[] = "CORVANE_DATA";

// Tests must not write into the machine's own folders, and programs that run side by side
// must not share one. A program that this one starts inherits the folder.
void UseTemporaryFolder() {
  if (std::getenv(kDataVariable) != nullptr) return;
  static const Vask::Tests::TempFolder folder;
  setenv(kDataVariable, folder.NativePath().c_str(), 1);
}
#endif

fs::path CommonData() {
  char path[261];
  if (!Vask::Platform::SystemFiles().CommonApplicationData(path, sizeof path)) std::abort();
  std::string text = path;
  if (fs::path::preferred_separator == '/') std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

// "09:05:03.007: "
constexpr std::size_t kTimeStampLength = 14;

}  // namespace

LogFolder::LogFolder() {
#if !defined(_WIN32)
  UseTemporaryFolder();
#endif
  m_base = CommonData() / "Veltrin Systems";
  const fs::path logs = Path();
  if (!fs::exists(logs)) return;
  for (const auto& file : fs::directory_iterator(logs)) fs::remove(file.path());
}

fs::path LogFolder::Path() {
  return CommonData() / "Veltrin Systems" / "Corvane" / "SNMP" / "Logs";
}

std::vector<std::string> LogFolder::Lines() const {
  std::vector<std::string> lines;
  const fs::path logs = Path();
  if (!fs::exists(logs)) return lines;
  std::vector<fs::path> files;
  for (const auto& file : fs::directory_iterator(logs)) files.push_back(file.path());
  std::sort(files.begin(), files.end());
  for (const fs::path& path : files) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
      lines.push_back(line.size() > kTimeStampLength ? line.substr(kTimeStampLength) : line);
  }
  return lines;
}

bool LogFolder::Has(const std::string& text) const {
  return CountOf(text) > 0;
}

std::size_t LogFolder::CountOf(const std::string& text) const {
  const auto lines = Lines();
  return static_cast<std::size_t>(
      std::count_if(lines.begin(), lines.end(),
                    [&](const std::string& line) { return line.find(text) != std::string::npos; }));
}

// Puts a file in the place of a folder.
LogFolder::Blocked::Blocked(const LogFolder& folder)
    : m_path(folder.m_base), m_aside(folder.m_base.string() + " aside") {
  if (fs::exists(m_path)) fs::rename(m_path, m_aside);
  std::ofstream(m_path) << "in the way\n";
}

LogFolder::Blocked::~Blocked() {
  fs::remove(m_path);
  if (fs::exists(m_aside)) fs::rename(m_aside, m_path);
}

}  // namespace Contract
