// The service: its state, its process, and its errors in the event log.

#include "check/win32/System.h"

#include <tlhelp32.h>

#include <cstring>

#include "check/Access.h"
#include "check/win32/Gather.h"

namespace Check {
namespace {

constexpr wchar_t kServiceName[] = L"SNMP";

struct ServiceHandle {
  using Type = SC_HANDLE;
  static constexpr Type None() noexcept { return nullptr; }
  void Close(Type handle) const noexcept { CloseServiceHandle(handle); }
};
using UniqueService = Vask::Platform::UniqueHandle<ServiceHandle>;

struct EventLogHandle {
  using Type = HANDLE;
  static constexpr Type None() noexcept { return nullptr; }
  void Close(Type handle) const noexcept { CloseEventLog(handle); }
};

ServiceFacts::State StateOf(DWORD state) {
  switch (state) {
    case SERVICE_RUNNING:
      return ServiceFacts::State::kRunning;
    case SERVICE_START_PENDING:
      return ServiceFacts::State::kStarting;
    case SERVICE_STOP_PENDING:
      return ServiceFacts::State::kStopping;
    case SERVICE_STOPPED:
      return ServiceFacts::State::kStopped;
    default:
      return ServiceFacts::State::kPaused;
  }
}

void ReadConfiguration(SC_HANDLE service, ServiceFacts& facts) {
  DWORD size = 0;
  QueryServiceConfigW(service, nullptr, 0, &size);
  std::vector<std::max_align_t> buffer(size / sizeof(std::max_align_t) + 1);
  auto* configuration = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer.data());
  const auto capacity = static_cast<DWORD>(buffer.size() * sizeof(std::max_align_t));
  if (!QueryServiceConfigW(service, configuration, capacity, &size)) return;
  facts.startType = configuration->dwStartType;
  const wchar_t* const account = configuration->lpServiceStartName;
  // An empty name means the account of the system.
  facts.account = account == nullptr || *account == 0 ? "LocalSystem" : Narrow(account);
}

void ReadModules(ServiceFacts& facts) {
  const UniqueSystemHandle snapshot =
      Own(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, facts.processId));
  if (!snapshot.Valid()) {
    facts.whyNoModules = ErrorText(GetLastError());
    return;
  }
  MODULEENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Module32FirstW(snapshot.Get(), &entry); more;
       more = Module32NextW(snapshot.Get(), &entry)) {
    facts.modules.push_back(Narrow(entry.szExePath));
  }
}

// Returns the time of the process's start, in Windows' ticks; 0 if it is unknown.
ULONGLONG ReadStart(ServiceFacts& facts) {
  const UniqueSystemHandle process =
      Own(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, facts.processId));
  FILETIME start{}, end{}, kernel{}, user{};
  if (!process.Valid() || !GetProcessTimes(process.Get(), &start, &end, &kernel, &user)) return 0;
  facts.startedAt = LocalText(start);
  return ULONGLONG{start.dwHighDateTime} << 32 | start.dwLowDateTime;
}

// "event 1102: the texts of the event". The record and its texts lie in `bytes`.
std::string EventText(const EVENTLOGRECORD& record) {
  std::string text = "event " + std::to_string(record.EventID & 0xFFFF) + ':';
  const auto* string = reinterpret_cast<const wchar_t*>(reinterpret_cast<const char*>(&record) +
                                                        record.StringOffset);
  for (WORD i = 0; i < record.NumStrings; ++i) {
    const std::wstring_view part(string);
    text += ' ' + Narrow(part);
    string += part.size() + 1;
  }
  return text;
}

// Appends the events of the service from one piece of the event log. Returns false at a record
// that is older than `since`, because all others are older, too.
bool TakeEvents(const char* bytes, DWORD size, DWORD since, std::vector<Event>& events) {
  for (DWORD at = 0; at < size;) {
    const auto& record = *reinterpret_cast<const EVENTLOGRECORD*>(bytes + at);
    if (record.Length == 0 || record.TimeGenerated < since) return false;
    const auto* source = reinterpret_cast<const wchar_t*>(&record + 1);
    if (std::wcscmp(source, kServiceName) == 0) {
      events.push_back({record.EventType == EVENTLOG_ERROR_TYPE, EventText(record)});
    }
    at += record.Length;
  }
  return true;
}

void ReadEvents(DWORD since, Facts& facts) {
  const Vask::Platform::UniqueHandle<EventLogHandle> log(OpenEventLogW(nullptr, L"System"));
  if (!log.Valid()) {
    facts.eventsUnknown = ErrorText(GetLastError());
    return;
  }
  constexpr DWORD kLargestRead = 0x7FFFF;  // the call's own limit; no record is larger
  std::vector<std::max_align_t> buffer(kLargestRead / sizeof(std::max_align_t));
  const auto capacity = static_cast<DWORD>(buffer.size() * sizeof(std::max_align_t));
  const auto* const bytes = reinterpret_cast<const char*>(buffer.data());
  DWORD read = 0;
  DWORD needed = 0;
  while (ReadEventLogW(log.Get(), EVENTLOG_SEQUENTIAL_READ | EVENTLOG_BACKWARDS_READ, 0,
                       buffer.data(), capacity, &read, &needed)) {
    if (!TakeEvents(bytes, read, since, facts.events)) return;
  }
  if (GetLastError() != ERROR_HANDLE_EOF) facts.eventsUnknown = ErrorText(GetLastError());
}

void ReadProcess(Facts& facts) {
  ReadModules(facts.service);
  const ULONGLONG start = ReadStart(facts.service);
  if (start == 0) {
    facts.eventsUnknown =
        "the time of the service's start is not known, run this program as an "
        "administrator";
    return;
  }
  constexpr ULONGLONG kTicksInSecond = 10'000'000;
  constexpr ULONGLONG kSecondsTo1970 = 11'644'473'600;
  ReadEvents(static_cast<DWORD>(start / kTicksInSecond - kSecondsTo1970), facts);
}

}  // namespace

void GatherService(Facts& facts) {
  ServiceFacts& service = facts.service;
  const UniqueService manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
  const UniqueService handle(
      manager.Valid()
          ? OpenServiceW(manager.Get(), kServiceName, SERVICE_QUERY_STATUS | SERVICE_QUERY_CONFIG)
          : nullptr);
  if (!handle.Valid()) {
    const DWORD error = GetLastError();
    if (error == ERROR_SERVICE_DOES_NOT_EXIST) {
      service.state = ServiceFacts::State::kMissing;
    } else {
      service.whyUnknown = ErrorText(error);
    }
    return;
  }
  ReadConfiguration(handle.Get(), service);
  facts.accountSids = SidsOf(service.account);
  SERVICE_STATUS_PROCESS status{};
  DWORD size = 0;
  if (!QueryServiceStatusEx(handle.Get(), SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status),
                            sizeof status, &size)) {
    service.whyUnknown = ErrorText(GetLastError());
    return;
  }
  service.state = StateOf(status.dwCurrentState);
  service.processId = status.dwProcessId;
  if (service.processId != 0) ReadProcess(facts);
}

}  // namespace Check
