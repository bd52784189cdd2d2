// Faces Windows: compiled with wineg++, linked into a program that is a Linux
// process and a Windows one at the same time.

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "host/ModuleLibrary.h"
#include "host/winelib/WideText.h"

// After the host's own headers: it defines a macro for every second English word.
#include <windows.h>

// Wine's own: the DOS path of a Unix path, from the process heap.
extern "C" __attribute__((ms_abi)) WCHAR* wine_get_dos_file_name(const char* unixPath);

namespace Host {
namespace {

std::string LastErrorText() {
  const DWORD code = GetLastError();
  char text[256] = "";
  FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                 sizeof(text), nullptr);
  std::string line(text);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  return "error " + std::to_string(code) + ": " + line;
}

// "C:\\..." or "\\\\server\\...", as a registration names a DLL; anything else is Unix'.
bool IsDosPath(const std::string& path) {
  return path.starts_with("\\\\") || (path.size() > 2 && path[1] == ':' && path[2] == '\\');
}

HMODULE LoadFromUnixPath(const std::string& path) {
  WCHAR* const dosPath = wine_get_dos_file_name(path.c_str());
  if (dosPath == nullptr) return nullptr;
  const HMODULE module = LoadLibraryW(dosPath);
  const DWORD error = GetLastError();
  HeapFree(GetProcessHeap(), 0, dosPath);
  SetLastError(error);
  return module;
}

// A Windows DLL. A select loop cannot wait for its trap event, so a thread
// does, and passes each signal on to an eventfd.
class DllLibrary final : public ModuleLibrary {
 public:
  explicit DllLibrary(HMODULE module) : m_module(module) {}

  ~DllLibrary() override {
    StopWatching();
    FreeLibrary(m_module);
  }

  void* Find(const char* name) const override {
    return reinterpret_cast<void*>(GetProcAddress(m_module, name));
  }

  int Watch(void* event) override {
    StopWatching();
    m_event = event;
    m_stop = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    m_descriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    m_watcher = CreateThread(nullptr, 0, &DllLibrary::PassOnSignals, this, 0, nullptr);
    if (m_stop == nullptr || m_descriptor < 0 || m_watcher == nullptr) StopWatching();
    return m_descriptor;
  }

  void TakeSignal() override {
    std::uint64_t count = 0;
    // Nothing to read means that there was no signal: both are fine here.
    [[maybe_unused]] const ssize_t read = ::read(m_descriptor, &count, sizeof(count));
  }

 private:
  static DWORD WINAPI PassOnSignals(void* self) {
    auto* const library = static_cast<DllLibrary*>(self);
    const HANDLE events[] = {library->m_stop, library->m_event};
    const std::uint64_t one = 1;
    while (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
      // Cannot fail: the counter is far from full and the descriptor open.
      [[maybe_unused]] const ssize_t written = ::write(library->m_descriptor, &one, sizeof(one));
    }
    return 0;
  }

  void StopWatching() {
    if (m_stop != nullptr) SetEvent(m_stop);
    if (m_watcher != nullptr) {
      WaitForSingleObject(m_watcher, INFINITE);
      CloseHandle(m_watcher);
    }
    if (m_stop != nullptr) CloseHandle(m_stop);
    if (m_descriptor >= 0) close(m_descriptor);
    m_stop = m_watcher = nullptr;
    m_descriptor = -1;
  }

  HMODULE m_module;
  HANDLE m_event = nullptr;
  HANDLE m_stop = nullptr;
  HANDLE m_watcher = nullptr;
  int m_descriptor = -1;
};

}  // namespace

std::unique_ptr<ModuleLibrary> ModuleLibrary::Open(const std::string& path, std::string& error) {
  const HMODULE module =
      IsDosPath(path) ? LoadLibraryW(ToWide(path).c_str()) : LoadFromUnixPath(path);
  if (module == nullptr) {
    error = LastErrorText();
    return nullptr;
  }
  return std::make_unique<DllLibrary>(module);
}

}  // namespace Host
