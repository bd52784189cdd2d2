#include "tests/contract/Library.h"

#include <windows.h>

// After <windows.h>, which they need.
#include <process.h>
#include <psapi.h>
#include <winternl.h>

#include <cstdint>
#include <vector>

namespace Contract {

void* LoadLibraryFile(const std::string& path) {
  return LoadLibraryA(path.c_str());
}

void* FindFunction(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void UnloadLibrary(void* library) {
  FreeLibrary(static_cast<HMODULE>(library));
}

int RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
  std::vector<const char*> argv{path.c_str()};
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  argv.push_back(nullptr);
  return static_cast<int>(_spawnv(_P_WAIT, path.c_str(), argv.data()));
}

namespace {

// One handle of any process, as NtQuerySystemInformation(16) lists them.
struct HandleInformation {
  ULONG processId;
  UCHAR objectType;
  UCHAR flags;
  USHORT value;
  PVOID object;
  ULONG access;
};
struct HandleList {
  ULONG count;
  HandleInformation handles[1];
};

}  // namespace

// Wine has no count of one process's handles, only this list of all.
std::size_t OpenHandles() {
  std::vector<std::uint64_t> buffer(1 << 16);
  const auto information = static_cast<SYSTEM_INFORMATION_CLASS>(16);
  ULONG length = 0;
  while (NtQuerySystemInformation(information, buffer.data(),
                                  static_cast<ULONG>(buffer.size() * sizeof(std::uint64_t)),
                                  &length) < 0)
    buffer.resize(buffer.size() * 2);
  const auto* const list = reinterpret_cast<const HandleList*>(buffer.data());
  std::size_t own = 0;
  for (ULONG i = 0; i < list->count; ++i)
    if (list->handles[i].processId == GetCurrentProcessId()) ++own;
  return own;
}

std::size_t HeldMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

}  // namespace Contract
