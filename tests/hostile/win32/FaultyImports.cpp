#include "tests/hostile/FaultyImports.h"

#include <winsock2.h>
// Include this after the socket declarations, because it depends on them.
#include <windows.h>

#include <cstring>
#include <utility>

#include "platform/Snmp.h"
#include "tests/hostile/FaultyImport.h"

namespace Hostile {

namespace {

template <class Part>
Part* At(void* library, std::size_t offset) {
  return reinterpret_cast<Part*>(static_cast<unsigned char*>(library) + offset);
}

// The loader has made the page read-only.
void* Exchange(void** slot, void* value) {
  DWORD before = 0;
  if (!VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before)) std::abort();
  return std::exchange(*slot, value);
}

// Replaces a function of one library that the module uses. Null if the module imports
// no function of this name from it.
void* ReplaceIn(void* library, const IMAGE_IMPORT_DESCRIPTOR& used, const char* name,
                void* replacement) {
  const auto* wanted = At<IMAGE_THUNK_DATA>(library, used.OriginalFirstThunk);
  auto* slot = At<void*>(library, used.FirstThunk);
  for (; wanted->u1.AddressOfData != 0; ++wanted, ++slot) {
    if (IMAGE_SNAP_BY_ORDINAL(wanted->u1.Ordinal)) continue;
    const auto* const import = At<IMAGE_IMPORT_BY_NAME>(library, wanted->u1.AddressOfData);
    if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) == 0)
      return Exchange(slot, replacement);
  }
  return nullptr;
}

}  // namespace

void* ReplaceImport(void* library, const char* name, void* replacement) {
  const auto* const headers = At<IMAGE_NT_HEADERS>(
      library, static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(library, 0)->e_lfanew));
  const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* used = At<IMAGE_IMPORT_DESCRIPTOR>(library, imports.VirtualAddress);
  for (; used->Name != 0; ++used) {
    void* const before = ReplaceIn(library, *used, name, replacement);
    if (before != nullptr) return before;
  }
  return nullptr;
}

void SetReason(int reason) noexcept {
  SetLastError(static_cast<DWORD>(reason));
}

namespace {

constexpr std::int64_t kFileTimePerSecond = 10'000'000;

void Shift(FILETIME& time, std::int64_t seconds) {
  ULARGE_INTEGER units{};
  units.LowPart = time.dwLowDateTime;
  units.HighPart = time.dwHighDateTime;
  units.QuadPart += static_cast<ULONGLONG>(seconds * kFileTimePerSecond);
  time = {units.LowPart, units.HighPart};
}

void GetShiftedSystemTime(FILETIME* now) {
  GetSystemTimeAsFileTime(now);
  Shift(*now, g_faultSwitch.epochShiftSeconds);
}

void GetShiftedLocalTime(SYSTEMTIME* now) {
  GetLocalTime(now);
  FILETIME time{};
  SystemTimeToFileTime(now, &time);
  Shift(time, g_faultSwitch.localShiftSeconds);
  FileTimeToSystemTime(&time, now);
}

DWORD GetShiftedTickCount() {
  return GetTickCount() + g_faultSwitch.tickShiftMs;
}

template <class Function>
void Put(void* library, const char* name, Function* function) {
  ReplaceKnownImport(library, name, reinterpret_cast<void*>(function));
}

void PutSockets(void* library) {
  constexpr Fault kFault = Fault::Sockets;
  FaultyImport<"socket", kFault, -1, WSAEMFILE, SOCKET(int, int, int)>::PutInto(library);
  FaultyImport<"connect", kFault, -1, WSAECONNREFUSED, int(SOCKET, const sockaddr*, int)>::PutInto(
      library);
  FaultyImport<"send", kFault, -1, WSAECONNRESET, int(SOCKET, const char*, int, int)>::PutInto(
      library);
  FaultyImport<"recv", kFault, -1, WSAECONNRESET, int(SOCKET, char*, int, int)>::PutInto(library);
  FaultyImport<"select", kFault, -1, WSAENOBUFS,
               int(int, fd_set*, fd_set*, fd_set*, const timeval*)>::PutInto(library);
  FaultyImport<"ioctlsocket", kFault, -1, WSAENOBUFS, int(SOCKET, long, u_long*)>::PutInto(library);
  FaultyImport<"WSAIoctl", kFault, -1, WSAENOBUFS,
               int(SOCKET, DWORD, void*, DWORD, void*, DWORD, DWORD*, OVERLAPPED*,
                   void*)>::PutInto(library);
}

void PutFiles(void* library) {
  constexpr Fault kFault = Fault::Files;
  FaultyImport<"GetFileAttributesA", kFault, -1, ERROR_ACCESS_DENIED, DWORD(const char*)>::PutInto(
      library);
  FaultyImport<"GetDriveTypeA", kFault, DRIVE_UNKNOWN, 0, UINT(const char*)>::PutInto(library);
  FaultyImport<"CreateDirectoryA", kFault, FALSE, ERROR_WRITE_PROTECT,
               BOOL(const char*, SECURITY_ATTRIBUTES*)>::PutInto(library);
  FaultyImport<"FindFirstFileA", kFault, -1, ERROR_ACCESS_DENIED,
               HANDLE(const char*, WIN32_FIND_DATAA*)>::PutInto(library);
  FaultyImport<"DeleteFileA", kFault, FALSE, ERROR_WRITE_PROTECT, BOOL(const char*)>::PutInto(
      library);
  FaultyImport<"CreateFileA", kFault, -1, ERROR_SHARING_VIOLATION,
               HANDLE(const char*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD,
                      HANDLE)>::PutInto(library);
  FaultyImport<"WriteFile", kFault, FALSE, ERROR_DISK_FULL,
               BOOL(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*)>::PutInto(library);
  FaultyImport<"GetFileSizeEx", kFault, FALSE, ERROR_ACCESS_DENIED,
               BOOL(HANDLE, LARGE_INTEGER*)>::PutInto(library);
  FaultyImport<"SHGetSpecialFolderLocation", kFault, E_FAIL, 0,
               HRESULT(HWND, int, void**)>::PutInto(library);
}

void PutThreads(void* library) {
  FaultyImport<"CreateEventA", Fault::Threads, 0, ERROR_NOT_ENOUGH_MEMORY,
               HANDLE(SECURITY_ATTRIBUTES*, BOOL, BOOL, const char*)>::PutInto(library);
  FaultyImport<"CreateThread", Fault::Threads, 0, ERROR_NOT_ENOUGH_MEMORY,
               HANDLE(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD,
                      DWORD*)>::PutInto(library);
}

void PutMemory(void* library) {
  constexpr Fault kFault = Fault::Memory;
  FaultyImport<"malloc", kFault, 0, 0, void*(std::size_t)>::PutInto(library);
  FaultyImport<"SnmpUtilMemAlloc", kFault, 0, 0, void*(UINT)>::PutInto(library);
  FaultyImport<"SnmpUtilOidCpy", kFault, 0, 0,
               INT(AsnObjectIdentifier*, AsnObjectIdentifier*)>::PutInto(library);
}

void PutClocks(void* library) {
  Put(library, "GetSystemTimeAsFileTime", &GetShiftedSystemTime);
  Put(library, "GetLocalTime", &GetShiftedLocalTime);
  Put(library, "GetTickCount", &GetShiftedTickCount);
}

}  // namespace

void PutFaultyImports(void* library) {
  PutSockets(library);
  PutFiles(library);
  PutThreads(library);
  PutMemory(library);
  PutClocks(library);
}

}  // namespace Hostile
