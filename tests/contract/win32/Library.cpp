#include "tests/contract/Library.h"

#include <windows.h>

// After <windows.h>, which they need.
#include <process.h>
#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
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

namespace {

// Returns an exit status with _P_WAIT, a handle with _P_NOWAIT, and -1 on failure.
std::intptr_t Spawn(int mode, const std::string& path, const std::vector<std::string>& arguments) {
  const std::string quoted = '"' + path + '"';  // the run-time only adds blanks between the words
  std::vector<const char*> argv{quoted.c_str()};
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  argv.push_back(nullptr);
  return _spawnv(mode, path.c_str(), argv.data());
}

}  // namespace

int RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
  return static_cast<int>(Spawn(_P_WAIT, path, arguments));
}

Companion::Companion(const std::string& path, const std::vector<std::string>& arguments)
    : m_process(Spawn(_P_NOWAIT, path, arguments)) {
  if (m_process != -1) return;
  std::fprintf(stderr, "%s does not start\n", path.c_str());
  std::exit(2);
}

Companion::~Companion() {
  const auto process = reinterpret_cast<HANDLE>(m_process);
  TerminateProcess(process, 0);
  WaitForSingleObject(process, INFINITE);
  CloseHandle(process);
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

// Wine does not count the handles of one process. This list holds those of all.
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

std::size_t RunningThreads() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 thread{};
  thread.dwSize = sizeof thread;
  std::size_t own = 0;
  for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread))
    if (thread.th32OwnerProcessID == GetCurrentProcessId()) ++own;
  CloseHandle(snapshot);
  return own;
}

std::size_t FreeThreadSlots() {
  std::vector<DWORD> taken;
  for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc())
    taken.push_back(slot);
  for (const DWORD slot : taken) TlsFree(slot);
  return taken.size();
}

namespace {

std::size_t HeldOf(HANDLE heap) {
  std::size_t held = 0;
  if (!HeapLock(heap)) return 0;
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry))
    if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) held += entry.cbData;
  HeapUnlock(heap);
  return held;
}

}  // namespace

std::size_t HeldMemory() {
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(64, heaps);
  std::size_t held = 0;
  for (DWORD i = 0; i < count && i < 64; ++i) held += HeldOf(heaps[i]);
  return held;
}

void CountWholeHeap() {}

std::size_t ResidentMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

}  // namespace Contract
