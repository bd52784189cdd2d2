// The registration, the DLL that it names, and the agent's log.

#include "check/win32/System.h"

#include <shlobj.h>

#include <algorithm>
#include <cstring>

#include "agent/AgentProcess.h"
#include "check/Verdicts.h"
#include "check/win32/Gather.h"

namespace Check {
namespace {

constexpr char kAgentsKey[] =
    R"(SYSTEM\CurrentControlSet\Services\SNMP\Parameters\ExtensionAgents)";
constexpr char kPathname[] = "Pathname";

constexpr std::size_t kLargestDll = 64u << 20;
// The requests of a busy manager write some 100 MB a day. Older lines do not matter.
constexpr std::size_t kMostLog = 64u << 20;

DWORD AttributesError(const std::string& path) {
  return GetFileAttributesW(Wide(path).c_str()) == INVALID_FILE_ATTRIBUTES ? GetLastError()
                                                                           : ERROR_SUCCESS;
}

bool Exists(const std::string& path) {
  return AttributesError(path) == ERROR_SUCCESS;
}

AgentEntry ReadEntry(const SettingValue& value) {
  AgentEntry entry;
  entry.name = value.name;
  entry.key = value.text;
  const std::size_t first = std::min(value.text.find_first_not_of('\\'), value.text.size());
  const std::string path = value.text.substr(first);
  const MachineKey key(path);
  if (key.IsOpen()) {
    entry.path = key.Text(kPathname);
  } else {
    entry.in32BitView = MachineKey(path, MachineKey::View::k32Bit).IsOpen();
  }
  return entry;
}

// Returns the imports that are neither in the DLL's folder nor among Windows' own libraries.
// Names that begin with "api-ms-" or "ext-ms-" are parts of Windows without files.
std::vector<std::string> MissingLibraries(const std::string& path, const Image& image) {
  wchar_t system[MAX_PATH] = L"";
  GetSystemDirectoryW(system, MAX_PATH);
  const std::string besides = path.substr(0, path.find_last_of('\\') + 1);
  const std::string windows = Narrow(system) + '\\';
  std::vector<std::string> missing;
  for (const std::string& library : image.imports) {
    const bool isPart = _strnicmp(library.c_str(), "api-ms-", 7) == 0 ||
                        _strnicmp(library.c_str(), "ext-ms-", 7) == 0;
    if (isPart || Exists(besides + library) || Exists(windows + library)) continue;
    missing.push_back(library);
  }
  return missing;
}

FileFacts ReadDll(const std::string& path) {
  FileFacts dll;
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = GetLastError();
    if (!IsMissing(error)) dll.whyUnknown = ErrorText(error);
    return dll;
  }
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return dll;
  dll.exists = true;
  dll.access = ReadAccess(path);
  const FileContent content = ReadFileTail(path, kLargestDll);
  if (content.error != ERROR_SUCCESS) {
    dll.whyUnknown = ErrorText(content.error);
    return dll;
  }
  dll.image = ReadImage(content.bytes);
  dll.missingLibraries = MissingLibraries(path, dll.image);
  return dll;
}

std::string CommonData() {
  wchar_t folder[MAX_PATH] = L"";
  const bool found = SUCCEEDED(
      SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder));
  return found ? Narrow(folder) : "C:\\ProgramData";
}

// Stores the names of the agent's log files, the newest first. Returns the error, or 0.
DWORD ListLogs(const std::string& folder, std::vector<std::string>& names) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(Wide(folder + "\\Log*.log").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    return IsMissing(error) ? DWORD{ERROR_SUCCESS} : error;
  }
  do {
    const std::string name = Narrow(found.cFileName);
    if (!DayOf(name).empty()) names.push_back(name);
  } while (FindNextFileW(search, &found));
  FindClose(search);
  std::sort(names.rbegin(), names.rend());
  return ERROR_SUCCESS;
}

// Reads from the newest file backwards, up to the last start or end of the agent.
void ReadLogs(const std::string& folder, const std::vector<std::string>& names, LogFacts& log) {
  struct File {
    std::string day;
    std::string text;
  };
  std::vector<File> files;
  std::size_t left = kMostLog;
  const std::string start = folder + '\\';
  for (const std::string& name : names) {
    FileContent content = ReadFileTail(start + name, left);
    if (content.error != ERROR_SUCCESS) {
      log.whyUnknown = name + ": " + ErrorText(content.error);
      return;
    }
    left -= content.bytes.size();
    files.push_back({DayOf(name), std::move(content.bytes)});
    if (left == 0 || HasStartOrEnd(files.back().text)) break;
  }
  LogReader reader;
  for (auto file = files.rbegin(); file != files.rend(); ++file) {
    reader.Feed(file->day, file->text);
  }
  log.findings = reader.Findings();
}

std::string MinuteAgo() {
  FILETIME now = Now();
  constexpr ULONGLONG kMinute = 600'000'000;
  const ULONGLONG ticks = (ULONGLONG{now.dwHighDateTime} << 32 | now.dwLowDateTime) - kMinute;
  now.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  now.dwLowDateTime = static_cast<DWORD>(ticks & 0xFFFFFFFF);
  return LocalText(now);
}

}  // namespace

void GatherAgent(Facts& facts) {
  const MachineKey agents(kAgentsKey);
  if (!agents.IsOpen()) {
    const auto error = static_cast<DWORD>(agents.Error());
    if (!IsMissing(error)) facts.registration.whyUnknown = ErrorText(error);
    return;
  }
  for (const SettingValue& value : agents.Values()) {
    facts.registration.agents.push_back(ReadEntry(value));
  }
  const auto own = OwnEntries(facts.registration);
  if (!own.empty() && IsFullPath(own.front()->path)) facts.dll = ReadDll(own.front()->path);
}

void GatherLog(Facts& facts) {
  LogFolderFacts& folder = facts.logFolder;
  LogFacts& log = facts.log;
  folder.path =
      CommonData() + Agent::AgentProcess::kProductFolder + Agent::AgentProcess::kLogsFolder;
  log.today = LocalText(Now()).substr(0, 10);
  log.minuteAgo = MinuteAgo();
  const DWORD error = AttributesError(folder.path);
  if (error != ERROR_SUCCESS) {
    if (!IsMissing(error)) folder.whyUnknown = log.whyUnknown = ErrorText(error);
    return;
  }
  folder.exists = true;
  folder.access = ReadAccess(folder.path);
  std::vector<std::string> names;
  if (const DWORD listError = ListLogs(folder.path, names)) {
    log.whyUnknown = ErrorText(listError);
    return;
  }
  log.files = names.size();
  if (names.empty()) return;
  log.newest = names.front();
  ReadLogs(folder.path, names, log);
}

}  // namespace Check
