#include "tests/rehearsal/win32/Machine.h"

#include <winsock2.h>

#include <windows.h>
// They need the base header before them:
#include <shlobj.h>

#include <fstream>
#include <system_error>

#include "platform/UniqueHandle.h"
#include "tests/contract/Module.h"

namespace Rehearsal {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kAgentKey[] = L"SOFTWARE\\Veltrin Systems\\Corvane SNMP\\CurrentVersion";
constexpr DWORD kStopMs = 60'000;
constexpr DWORD kPollMs = 200;

bool AgentIsRegistered() {
  return RegGetValueW(HKEY_LOCAL_MACHINE, kAgentKey, L"Pathname", RRF_RT_ANY, nullptr, nullptr,
                      nullptr) == ERROR_SUCCESS;
}

// A connection finds listeners on every address of the machine.
bool PortIsUsed() {
  WSADATA data{};
  if (WSAStartup(MAKEWORD(2, 2), &data) != 0) return false;
  const SOCKET probe = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(Contract::kLinkPort);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool used =
      connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  closesocket(probe);
  WSACleanup();
  return used;
}

bool IsAdministrator() {
  BYTE group[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof group;
  BOOL member = FALSE;
  return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, group, &size) &&
         CheckTokenMembership(nullptr, group, &member) && member;
}

struct ServiceHandle {
  using Type = SC_HANDLE;
  static constexpr Type None() noexcept { return nullptr; }
  void Close(Type handle) const noexcept { CloseServiceHandle(handle); }
};
using UniqueService = Vask::Platform::UniqueHandle<ServiceHandle>;

UniqueService OpenSnmp(DWORD access) {
  const UniqueService manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
  return UniqueService(manager.Valid() ? OpenServiceW(manager.Get(), L"SNMP", access) : nullptr);
}

DWORD StateOf(const UniqueService& service) {
  SERVICE_STATUS status{};
  return service.Valid() && QueryServiceStatus(service.Get(), &status) ? status.dwCurrentState
                                                                       : SERVICE_STOPPED;
}

bool IsDisabled() {
  DWORD start = 0;
  DWORD size = sizeof start;
  return RegGetValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Services\\SNMP", L"Start",
                      RRF_RT_REG_DWORD, nullptr, &start, &size) == ERROR_SUCCESS &&
         start == SERVICE_DISABLED;
}

fs::path CommonData() {
  wchar_t path[MAX_PATH] = L"";
  return SUCCEEDED(
             SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path))
             ? path
             : L"C:\\ProgramData";
}

}  // namespace

std::string WhyNotHere() {
  if (AgentIsRegistered()) {
    return "The agent is installed on this machine, and the tests would remove its logs. "
           "Remove the package first, or use another machine.";
  }
  if (PortIsUsed()) {
    return "A program listens on TCP port " + std::to_string(Contract::kLinkPort) +
           ", which the tests need. Stop the Corvane software.";
  }
  return {};
}

std::string WhyNoService(const fs::path& root) {
  if (!IsAdministrator()) {
    return "/service needs the rights of an administrator. Start the command prompt with \"Run "
           "as administrator\".";
  }
  if (!OpenSnmp(SERVICE_QUERY_STATUS).Valid()) {
    return "/service needs the SNMP service, which is not installed on this machine. Install the "
           "Windows feature \"SNMP Service\".";
  }
  if (IsDisabled()) return "/service needs the SNMP service, which is disabled. Enable it.";
  if (PackageIn(root).empty()) return "There is no package (.msi) beside rehearse.cmd.";
  return {};
}

fs::path PackageIn(const fs::path& root) {
  for (const auto& entry : fs::directory_iterator(root)) {
    if (entry.path().extension() == ".msi") return entry.path();
  }
  return {};
}

bool ServiceIsRunning() {
  return StateOf(OpenSnmp(SERVICE_QUERY_STATUS)) == SERVICE_RUNNING;
}

void StopService() {
  const UniqueService service = OpenSnmp(SERVICE_STOP | SERVICE_QUERY_STATUS);
  SERVICE_STATUS status{};
  if (!service.Valid() || !ControlService(service.Get(), SERVICE_CONTROL_STOP, &status)) return;
  for (DWORD waited = 0; waited < kStopMs && StateOf(service) != SERVICE_STOPPED;
       waited += kPollMs) {
    Sleep(kPollMs);
  }
}

DataFolder::DataFolder(const fs::path& root)
    : m_folder(CommonData() / "Veltrin Systems"),
      m_aside(m_folder.string() + " aside"),
      m_mark(root / "data-folder-is-ours") {}

std::string DataFolder::Take() {
  if (fs::exists(m_mark)) Remove();
  for (const fs::path& path : {m_folder, m_aside}) {
    if (fs::exists(path)) {
      return "There is already " + path.string() +
             ", where the tests remove log files. Rename it, or use another machine.";
    }
  }
  std::ofstream mark(m_mark);
  return mark ? "" : "Cannot write to " + m_mark.parent_path().string() + ".";
}

void DataFolder::Empty(const fs::path& logs) const {
  std::error_code missing;
  fs::copy(m_folder / "Corvane" / "SNMP" / "Logs", logs, missing);
  Remove();
}

void DataFolder::Release() const {
  std::error_code missing;
  fs::remove(m_mark, missing);
}

void DataFolder::Remove() const {
  std::error_code missing;
  fs::remove_all(m_folder, missing);
  fs::remove_all(m_aside, missing);
}

}  // namespace Rehearsal
