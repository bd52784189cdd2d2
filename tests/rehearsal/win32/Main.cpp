// rehearse.exe: runs the programs of programs.txt on a Windows machine. See kHelp.

#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "BuildSettings.h"
#include "tests/rehearsal/win32/Command.h"
#include "tests/rehearsal/win32/Machine.h"
#include "tests/rehearsal/win32/Report.h"
#include "tests/rehearsal/win32/ServiceRun.h"
#include "tests/rehearsal/win32/ZipFile.h"

namespace Rehearsal {
namespace {

namespace fs = std::filesystem;

constexpr char kHelp[] =
    "rehearse.cmd [/service]\n"
    "\n"
    "Runs the tests of the Corvane SNMP agent on this machine, which takes some minutes,\n"
    "and writes all logs to rehearsal-results.zip. Please send this file back.\n"
    "\n"
    "It writes to its own folder and to the log folder of the agent, which it removes again.\n"
    "It refuses to run if the agent is installed, or if a program uses TCP port 16969.\n"
    "\n"
    "  /service  also install the package, ask the SNMP service of this machine, and remove\n"
    "            the package. This needs the rights of an administrator. The SNMP service\n"
    "            starts again twice, and has one more community, corvane-rehearsal, meanwhile\n"
    "\n"
    "The last line is \"N passed, N failed\". Exit status: 0 if all programs passed, 1 if one\n"
    "failed or if the tests cannot run here, 2 if an argument is wrong.\n";

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongArgument = 2;

constexpr auto kNoteLimit = std::chrono::minutes(2);

// A line of programs.txt.
struct Program {
  std::chrono::milliseconds limit;
  fs::path place;
  std::string arguments;  // each after a blank
};

// Reads the lines "run MINUTES PROGRAM [ARGUMENT...]".
std::vector<Program> ReadPrograms(const fs::path& list) {
  std::vector<Program> programs;
  std::ifstream file(list);
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string kind, place, arguments;
    double minutes = 0;
    if (!(words >> kind >> minutes >> place) || kind != "run") continue;
    for (std::string word; words >> word;) arguments += ' ' + word;
    const std::chrono::duration<double, std::ratio<60>> limit(minutes);
    programs.push_back(
        {std::chrono::duration_cast<std::chrono::milliseconds>(limit), place, arguments});
  }
  return programs;
}

class WholeRun {
 public:
  explicit WholeRun(const fs::path& root)
      : m_root(root), m_results(root / "results"), m_work(root / "work"), m_data(root) {}

  int Main(bool service) {
    std::string why = WhyNotHere();
    if (why.empty() && service) why = WhyNoService(m_root);
    if (why.empty()) why = m_data.Take();
    if (!why.empty()) {
      static_cast<void>(std::fprintf(stderr, "rehearse: %s\n", why.c_str()));
      return kFailed;
    }
    const bool passed = RunAll(service);
    m_data.Release();
    return passed ? kDone : kFailed;
  }

 private:
  bool RunAll(bool service) {
    MakeFolders();
    Report report(m_results / "summary.txt");
    report.Say("Corvane SNMP agent " CORVANE_VERSION_TEXT);
    NoteMachine();
    for (const Program& program : ReadPrograms(m_root / "programs.txt")) RunOne(program, report);
    if (service) {
      RunWithService(m_root, m_results, report);
      m_data.Empty(m_results / "service-logs");
    }
    NoteEvents();
    return Finish(report);
  }

  // The tests make their temporary files in the folder of the rehearsal.
  void MakeFolders() const {
    for (const fs::path& folder : {m_results, m_work}) {
      fs::remove_all(folder);
      fs::create_directory(folder);
    }
    SetEnvironmentVariableW(L"TEMP", m_work.c_str());
    SetEnvironmentVariableW(L"TMP", m_work.c_str());
  }

  // Its working folder is its own, as under CTest.
  void RunOne(const Program& program, Report& report) {
    ++m_number;
    const std::string name =
        (m_number < 10 ? "0" : "") + std::to_string(m_number) + '-' + program.place.stem().string();
    const fs::path output = m_results / (name + ".txt");
    const fs::path file = m_root / program.place.lexically_normal().make_preferred();
    report.Begin(program.place.string() + program.arguments);
    const std::wstring arguments(program.arguments.begin(), program.arguments.end());
    const Ending ending =
        Run(InQuotes(file) + arguments, file.parent_path(), output, program.limit);
    report.End(ending.Good() ? "" : ending.Text() + LastLines(output));
    m_data.Empty(m_results / (name + "-logs"));
  }

  void Note(const char* file, const std::wstring& line) const {
    const Ending ending = Run(line, m_root, m_results / file, kNoteLimit);
    if (!ending.Good()) std::ofstream(m_results / file, std::ios::app) << ending.Text() << '\n';
  }

  void NoteMachine() const {
    Note("windows.txt", L"cmd.exe /d /c ver");
    for (const wchar_t* const value :
         {L"ProductName", L"DisplayVersion", L"CurrentBuildNumber", L"UBR"}) {
      Note("windows.txt",
           LR"(reg.exe query "HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion" /v )" +
               std::wstring(value));
    }
    Note("corvane-check.txt", InQuotes(m_root / "corvane-check.exe"));
  }

  // The events since the start of the rehearsal.
  void NoteEvents() const {
    const auto age = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - m_began);
    const std::wstring time =
        L"TimeCreated[timediff(@SystemTime) <= " + std::to_wstring(age.count()) + L"]]]\"";
    const std::wstring query = L"wevtutil.exe query-events ";
    Note("events-application.txt",
         query +
             L"Application /format:text \"/query:*[System[Provider[@Name='Application Error' or "
             L"@Name='Windows Error Reporting' or @Name='MsiInstaller'] and " +
             time);
    Note("events-system.txt", query +
                                  L"System /format:text \"/query:*[System[Provider[@Name='SNMP' or "
                                  L"@Name='Service Control Manager'] and " +
                                  time);
  }

  bool Finish(Report& report) const {
    std::error_code inUse;
    fs::remove_all(m_work, inUse);
    const fs::path zip = m_root / "rehearsal-results.zip";
    report.Say("Please send back " + zip.string());
    const bool passed = report.Close();
    if (WriteZip(m_results, zip)) return passed;
    static_cast<void>(std::fprintf(stderr, "rehearse: cannot write %s; send back the folder %s\n",
                                   zip.string().c_str(), m_results.string().c_str()));
    return false;
  }

  const fs::path m_root;
  const fs::path m_results;
  const fs::path m_work;
  DataFolder m_data;
  const std::chrono::steady_clock::time_point m_began = std::chrono::steady_clock::now();
  int m_number = 0;
};

fs::path OwnFolder() {
  wchar_t path[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fs::path(path).parent_path();
}

}  // namespace
}  // namespace Rehearsal

int main(int count, char** arguments) {
  bool service = false;
  for (int i = 1; i < count; ++i) {
    if (std::strcmp(arguments[i], "/?") == 0) {
      static_cast<void>(std::fputs(Rehearsal::kHelp, stdout));
      return Rehearsal::kDone;
    }
    if (std::strcmp(arguments[i], "/service") != 0) {
      static_cast<void>(std::fprintf(stderr, "rehearse: unknown argument %s\n\n%s", arguments[i],
                                     Rehearsal::kHelp));
      return Rehearsal::kWrongArgument;
    }
    service = true;
  }
  // A crash of a program must not wait for a click.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  try {
    return Rehearsal::WholeRun(Rehearsal::OwnFolder()).Main(service);
  } catch (const std::exception& fault) {
    static_cast<void>(std::fprintf(stderr, "rehearse: %s\n", fault.what()));
    return Rehearsal::kFailed;
  }
}
