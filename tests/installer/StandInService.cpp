// A stand-in for the Windows SNMP service, for systems without it. It reads the
// registration of extension agents in the same way as the real service, loads and
// starts each agent, and unloads it when the service stops. It writes one line for
// each step to LOG-FILE.
//
//   StandInService.exe LOG-FILE     the service control manager runs it as "SNMP"

#include <winsock2.h>

#include <windows.h>

#include <snmp.h>

#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr char kServiceName[] = "SNMP";
constexpr char kAgentsKey[] =
    "SYSTEM\\CurrentControlSet\\Services\\SNMP\\Parameters\\ExtensionAgents";

constexpr DWORD kAnswerTimeMs = 300;

const char* g_logFile = "";
HANDLE g_stopEvent = nullptr;
SERVICE_STATUS_HANDLE g_statusHandle = nullptr;
std::vector<HMODULE> g_agents;

void Log(const std::string& line) {
  if (std::FILE* file = std::fopen(g_logFile, "a")) {
    static_cast<void>(std::fprintf(file, "%s\n", line.c_str()));
    static_cast<void>(std::fclose(file));
  }
}

// Returns the text of a REG_SZ value, or the expanded text of a REG_EXPAND_SZ value;
// otherwise "".
std::string ReadText(HKEY key, const char* name) {
  char text[1024] = "";
  DWORD size = sizeof(text) - 1;
  DWORD type = REG_NONE;
  if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) != 0) {
    return "";
  }
  if (type == REG_EXPAND_SZ) {
    char expanded[1024] = "";
    ExpandEnvironmentStringsA(text, expanded, sizeof(expanded));
    return expanded;
  }
  return type == REG_SZ ? text : "";
}

std::string ReadText(const std::string& path, const char* name) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != 0) return "";
  std::string text = ReadText(key, name);
  RegCloseKey(key);
  return text;
}

std::vector<std::string> AgentNames(HKEY key) {
  std::vector<std::string> names;
  char name[256];
  DWORD length = std::size(name);
  for (DWORD i = 0; RegEnumValueA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
       ++i) {
    names.emplace_back(name, length);
    length = std::size(name);
  }
  return names;
}

// Returns the four numbers of a file's VERSIONINFO, or "none".
std::string FileVersion(const std::string& path) {
  std::vector<char> block(GetFileVersionInfoSizeA(path.c_str(), nullptr));
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  if (block.empty() ||
      !GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) ||
      !VerQueryValueA(block.data(), "\\", reinterpret_cast<void**>(&info), &length)) {
    return "none";
  }
  char text[64];
  static_cast<void>(std::snprintf(text, sizeof(text), "%u.%u.%u.%u", HIWORD(info->dwFileVersionMS),
                                  LOWORD(info->dwFileVersionMS), HIWORD(info->dwFileVersionLS),
                                  LOWORD(info->dwFileVersionLS)));
  return text;
}

std::string Dotted(const AsnObjectIdentifier& oid) {
  std::string text;
  for (UINT i = 0; i < oid.idLength; ++i) text += (i == 0 ? "" : ".") + std::to_string(oid.ids[i]);
  return text;
}

template <class Function>
Function Export(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Starts a loaded agent in the same way as the service. Returns a text for the log.
std::string StartAgent(HMODULE module) {
  const auto init = Export<PFNSNMPEXTENSIONINIT>(module, "SnmpExtensionInit");
  if (init == nullptr || Export<PFNSNMPEXTENSIONQUERY>(module, "SnmpExtensionQuery") == nullptr ||
      Export<PFNSNMPEXTENSIONTRAP>(module, "SnmpExtensionTrap") == nullptr) {
    return "not an agent";
  }
  HANDLE trapEvent = nullptr;
  AsnObjectIdentifier view{};
  const bool started = init(GetTickCount(), &trapEvent, &view) != FALSE;
  return std::string(started ? "started" : "start failed") + ", view " + Dotted(view);
}

HMODULE LoadAgent(const std::string& name, const std::string& keyPath) {
  const std::string path = ReadText(keyPath, "Pathname");
  if (path.empty()) {
    Log(name + ": no Pathname in " + keyPath);
    return nullptr;
  }
  const HMODULE module = LoadLibraryA(path.c_str());
  if (module == nullptr) {
    Log(name + ": " + path + " not loaded, error " + std::to_string(GetLastError()));
    return nullptr;
  }
  Log(name + ": " + path + " version " + FileVersion(path) + " " + StartAgent(module));
  return module;
}

std::vector<HMODULE> LoadAgents() {
  std::vector<HMODULE> modules;
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kAgentsKey, 0, KEY_READ, &key) != 0) return modules;
  for (const std::string& name : AgentNames(key)) {
    if (const HMODULE module = LoadAgent(name, ReadText(key, name.c_str()))) {
      modules.push_back(module);
    }
  }
  RegCloseKey(key);
  return modules;
}

void Report(DWORD state) {
  SERVICE_STATUS status{};
  status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
  status.dwCurrentState = state;
  status.dwControlsAccepted = state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0U;
  SetServiceStatus(g_statusHandle, &status);
}

// Unloads the agents before it returns, because Wine's installer does not wait until a
// service has stopped. It waits only for the return of this function.
void WINAPI OnControl(DWORD control) {
  if (control != SERVICE_CONTROL_STOP) {
    Report(SERVICE_RUNNING);
    return;
  }
  Report(SERVICE_STOP_PENDING);
  for (const HMODULE module : g_agents) FreeLibrary(module);
  Log("service stopped");
  Report(SERVICE_STOPPED);
  SetEvent(g_stopEvent);
}

void WINAPI ServiceMain(DWORD, char**) {
  g_statusHandle = RegisterServiceCtrlHandlerA(kServiceName, OnControl);
  Log("service started");
  g_agents = LoadAgents();
  Log("service ready");
  Report(SERVICE_RUNNING);
  WaitForSingleObject(g_stopEvent, INFINITE);
  // The process ends with this function. Another thread must first return from OnControl.
  Sleep(kAnswerTimeMs);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  g_logFile = argv[1];
  g_stopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  char name[] = "SNMP";
  const SERVICE_TABLE_ENTRYA table[] = {{name, ServiceMain}, {nullptr, nullptr}};
  return StartServiceCtrlDispatcherA(table) ? 0 : 1;
}
