#include "tests/rehearsal/win32/ServiceRun.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/rehearsal/win32/Command.h"
#include "tests/rehearsal/win32/Machine.h"

namespace Rehearsal {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto kInstallLimit = 10min;
constexpr auto kCheckLimit = 1min;
constexpr auto kPatience = 2min;
constexpr DWORD kPauseMs = 1000;

constexpr wchar_t kCommunities[] =
    L"SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ValidCommunities";
constexpr wchar_t kAgents[] =
    L"SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents";
constexpr wchar_t kCommunity[] = L"corvane-rehearsal";
constexpr DWORD kReadOnly = 4;

// The steps of corvane-check that the package and the simulated server are responsible for. The
// others depend on the settings of the machine.
constexpr const char* kNeededSteps[] = {"key",  "path", "file",   "image", "loaded",
                                        "port", "link", "folder", "log",   "answer"};

bool HasValue(const wchar_t* key, const wchar_t* name) {
  return RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_ANY, nullptr, nullptr, nullptr) ==
         ERROR_SUCCESS;
}

// A community that may read, so that the service answers this machine.
class Community {
 public:
  Community() {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kCommunities, kCommunity, REG_DWORD, &kReadOnly,
                    sizeof kReadOnly);
  }
  ~Community() { RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kCommunities, kCommunity); }
  Community(const Community&) = delete;
  Community& operator=(const Community&) = delete;
};

std::vector<std::string> LinesOf(const fs::path& file) {
  std::vector<std::string> lines;
  std::ifstream input(file);
  for (std::string line; std::getline(input, line);) {
    const std::size_t begin = line.find_first_not_of(' ');
    const std::size_t end = line.find_last_not_of("\r ");
    if (begin != std::string::npos) lines.push_back(line.substr(begin, end + 1 - begin));
  }
  return lines;
}

// True if a line is "[ok] NUMBER NAME ...".
bool IsOk(const std::vector<std::string>& lines, const std::string& name) {
  return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
    std::istringstream words(line);
    std::string verdict, number, step;
    words >> verdict >> number >> step;
    return verdict == "[ok]" && step == name;
  });
}

// Installs (/i) or removes (/x) the package. Returns the reason of a failure.
std::string Installer(const wchar_t* action, const fs::path& root, const fs::path& log) {
  const std::wstring line = L"msiexec.exe " + std::wstring(action) + L' ' +
                            InQuotes(PackageIn(root)) + L" /qn /norestart /l*v " + InQuotes(log);
  const Ending ending = Run(line, root, log.parent_path() / "msiexec.txt", kInstallLimit);
  return ending.Good() ? "" : ending.Text() + ", see " + log.string();
}

// Returns the first needed step of corvane-check that is not in order, or an empty text.
std::string BadStep(const std::vector<std::string>& lines) {
  for (const char* const name : kNeededSteps) {
    if (!IsOk(lines, name)) return std::string("the step ") + name + " is not in order";
  }
  return {};
}

// Returns the first expected value that the service has not returned, or an empty text.
std::string MissingValue(const fs::path& expected, const std::vector<std::string>& lines) {
  for (const std::string& value : LinesOf(expected)) {
    if (std::find(lines.begin(), lines.end(), value) == lines.end()) return "not " + value;
  }
  return {};
}

// The agent gets its first values some seconds after its start. So this repeats corvane-check
// until everything is as it must be, for two minutes at most.
void AskService(const fs::path& root, const fs::path& output, Report& report) {
  const fs::path files = root / "tests" / "rehearsal";
  const Command simulator(InQuotes(root / "corvane-sim.exe") + L" --script values.txt", files,
                          output.parent_path() / "corvane-sim-service.txt");
  const std::wstring line =
      InQuotes(root / "corvane-check.exe") + L" --no-traps --community " + kCommunity;
  report.Begin("corvane-check finds the agent in order");
  std::string badStep = "not run";
  std::string missingValue = badStep;
  for (const auto deadline = std::chrono::steady_clock::now() + kPatience;
       !(badStep.empty() && missingValue.empty()) && std::chrono::steady_clock::now() < deadline;
       Sleep(kPauseMs)) {
    fs::remove(output);
    static_cast<void>(Run(line, root, output, kCheckLimit));
    badStep = BadStep(LinesOf(output));
    missingValue = MissingValue(files / "answers.txt", LinesOf(output));
  }
  report.End(badStep.empty() ? "" : badStep + LastLines(output));
  report.Begin("SNMP Get returns the values of the simulated server");
  report.End(missingValue);
}

std::string WhatIsLeft(bool wasRunning) {
  if (HasValue(kAgents, L"CorvaneSnmpAgent")) return "the agent is still registered";
  if (HasValue(kCommunities, kCommunity)) return "the community corvane-rehearsal is still there";
  wchar_t programs[MAX_PATH] = L"";
  GetEnvironmentVariableW(L"ProgramFiles", programs, MAX_PATH);
  const fs::path folder = fs::path(programs) / "Veltrin Systems";
  if (fs::exists(folder)) return folder.string() + " is still there";
  if (ServiceIsRunning() != wasRunning) return "the SNMP service is not in its earlier state";
  return {};
}

}  // namespace

void RunWithService(const fs::path& root, const fs::path& results, Report& report) {
  const bool wasRunning = ServiceIsRunning();
  {
    const Community community;
    report.Begin("the package is installed");
    const std::string failure = Installer(L"/i", root, results / "install.log");
    report.End(failure);
    if (failure.empty()) AskService(root, results / "corvane-check-service.txt", report);
    report.Begin("the package is removed");
    report.End(Installer(L"/x", root, results / "remove.log"));
  }
  if (!wasRunning) StopService();
  report.Begin("nothing is left");
  report.End(WhatIsLeft(wasRunning));
}

}  // namespace Rehearsal
