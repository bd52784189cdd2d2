// ModuleCrash MODULE: calls an export of the module with a null pointer, so that the module
// reads or writes address 0. Prints the offset of the instruction in the module.

#include <windows.h>

#include <cstdint>
#include <cstdio>

namespace {

HMODULE g_module = nullptr;

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
  if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  const auto address =
      reinterpret_cast<std::uintptr_t>(exception->ExceptionRecord->ExceptionAddress);
  static_cast<void>(std::printf(
      "%llx\n",
      static_cast<unsigned long long>(address - reinterpret_cast<std::uintptr_t>(g_module))));
  static_cast<void>(std::fflush(stdout));
  TerminateProcess(GetCurrentProcess(), 3);  // without a word of the module
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  g_module = LoadLibraryA(argv[1]);
  if (g_module == nullptr) return 1;
  AddVectoredExceptionHandler(1, OnException);
  using Query = BOOL(WINAPI*)(BYTE, void*, void*, void*);
  const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(g_module, "SnmpExtensionQuery")));
  query(0, nullptr, nullptr, nullptr);
  return 0;
}
