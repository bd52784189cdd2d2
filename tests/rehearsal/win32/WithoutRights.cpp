// without_rights COMMAND-LINE: runs a program without the rights of an administrator, and ends
// with its exit status. For the tests of the rehearsal.

#include <windows.h>

#include <cstdio>

int main(int count, char** arguments) {
  if (count != 2) return 2;
  BYTE group[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof group;
  CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, group, &size);
  SID_AND_ATTRIBUTES disabled{group, 0};
  HANDLE own = nullptr;
  HANDLE restricted = nullptr;
  STARTUPINFOA start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &own) ||
      !CreateRestrictedToken(own, 0, 1, &disabled, 0, nullptr, 0, nullptr, &restricted) ||
      !CreateProcessAsUserA(restricted, nullptr, arguments[1], nullptr, nullptr, TRUE, 0, nullptr,
                            nullptr, &start, &process)) {
    static_cast<void>(std::fprintf(stderr, "without_rights: error %lu\n", GetLastError()));
    return 2;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 2;
  GetExitCodeProcess(process.hProcess, &status);
  return static_cast<int>(status);
}
