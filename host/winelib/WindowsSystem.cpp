// The Windows side of the host: it loads DLLs and reads the registry. wineg++
// compiles it for a program that is a Linux process and a Windows process at the
// same time.

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "host/ModuleLibrary.h"
#include "host/Registration.h"
#include "platform/UniqueHandle.h"

// After the host's own headers, because it defines many macros with common names.
#include <windows.h>

namespace Host {
namespace {

template <class Policy>
using Unique = Vask::Platform::UniqueHandle<Policy>;

template <class Handle>
struct NullIsNone {
  using Type = Handle;
  static constexpr Type None() noexcept { return nullptr; }
};
struct KernelObject : NullIsNone<HANDLE> {
  static void Close(Type object) noexcept { CloseHandle(object); }
};
struct Dll : NullIsNone<HMODULE> {
  static void Close(Type module) noexcept { FreeLibrary(module); }
};
struct RegistryKey : NullIsNone<HKEY> {
  static void Close(Type key) noexcept { RegCloseKey(key); }
};
struct HeapText : NullIsNone<WCHAR*> {
  static void Close(Type text) noexcept { HeapFree(GetProcessHeap(), 0, text); }
};
struct Descriptor {
  using Type = int;
  static constexpr Type None() noexcept { return -1; }
  static void Close(Type descriptor) noexcept { close(descriptor); }
};

// Between the host's UTF-8 and Windows' UTF-16, for names and paths. What is not
// valid in the one becomes a replacement character in the other.
std::u16string ToWide(const std::string& text) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(needed), u'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string FromWide(const std::u16string& wide) {
  const int length = static_cast<int>(wide.size());
  const int needed =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, text.data(), needed, nullptr, nullptr);
  return text;
}

// ---- DLLs

std::string LastErrorText() {
  const DWORD code = GetLastError();
  char text[256] = "";
  FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                 sizeof(text), nullptr);
  std::string line(text);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  return "error " + std::to_string(code) + ": " + line;
}

// True for "C:\\..." and "\\\\server\\...", as a registration names a DLL. Any
// other path is a Unix path.
bool IsDosPath(const std::string& path) {
  return path.starts_with("\\\\") || (path.size() > 2 && path[1] == ':' && path[2] == '\\');
}

HMODULE LoadFromUnixPath(const std::string& path) {
  // Wine's own function: the text comes from the process heap.
  Unique<HeapText> dosPath(wine_get_dos_file_name(path.c_str()));
  if (!dosPath.Valid()) return nullptr;
  const HMODULE module = LoadLibraryW(dosPath.Get());
  const DWORD error = GetLastError();
  dosPath.Reset();
  SetLastError(error);
  return module;
}

// A select loop cannot wait for the trap event of a Windows DLL, so a thread
// waits for it and passes each signal on to an eventfd.
class DllLibrary final : public ModuleLibrary {
 public:
  explicit DllLibrary(Unique<Dll> module) : m_module(std::move(module)) {}
  ~DllLibrary() override { StopWatching(); }

  void* Find(const char* name) const override {
    return reinterpret_cast<void*>(GetProcAddress(m_module.Get(), name));
  }

  int Watch(void* event) override {
    StopWatching();
    m_event = event;
    m_stop.Reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    m_descriptor.Reset(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    m_watcher.Reset(CreateThread(nullptr, 0, &DllLibrary::PassOnSignals, this, 0, nullptr));
    if (!m_stop.Valid() || !m_descriptor.Valid() || !m_watcher.Valid()) StopWatching();
    return m_descriptor.Get();
  }

  void TakeSignal() override {
    std::uint64_t count = 0;
    // If there was no signal, there is nothing to read, which is fine.
    [[maybe_unused]] const ssize_t read = ::read(m_descriptor.Get(), &count, sizeof(count));
  }

 private:
  static DWORD WINAPI PassOnSignals(void* self) {
    auto* const library = static_cast<DllLibrary*>(self);
    const HANDLE events[] = {library->m_stop.Get(), library->m_event};
    const std::uint64_t one = 1;
    while (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
      // Cannot fail: the counter is far from full and the descriptor is open.
      [[maybe_unused]] const ssize_t written =
          ::write(library->m_descriptor.Get(), &one, sizeof(one));
    }
    return 0;
  }

  void StopWatching() {
    if (m_stop.Valid()) SetEvent(m_stop.Get());
    if (m_watcher.Valid()) WaitForSingleObject(m_watcher.Get(), INFINITE);
    m_watcher.Reset();
    m_stop.Reset();
    m_descriptor.Reset();
  }

  Unique<Dll> m_module;
  HANDLE m_event = nullptr;  // the module's
  Unique<KernelObject> m_stop;
  Unique<KernelObject> m_watcher;
  Unique<Descriptor> m_descriptor;
};

// ---- the registry

constexpr DWORD kLongestValueName = 16383;  // characters; Windows' own limit

// Opens a key of HKEY_LOCAL_MACHINE for reading.
Unique<RegistryKey> OpenKey(const std::string& name, Registry::View view) {
  const REGSAM bits = view == Registry::View::Bits64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
  HKEY key = nullptr;
  const LSTATUS opened =
      RegOpenKeyExW(HKEY_LOCAL_MACHINE, ToWide(name).c_str(), 0, KEY_READ | bits, &key);
  return Unique<RegistryKey>(opened == ERROR_SUCCESS ? key : nullptr);
}

// RegGetValue expands a REG_EXPAND_SZ and then treats it as a REG_SZ.
constexpr DWORD kTexts = RRF_RT_REG_SZ;

Registry::Value ReadText(HKEY key, const std::u16string& name) {
  using Value = Registry::Value;
  DWORD bytes = 0;
  const LSTATUS found = RegGetValueW(key, nullptr, name.c_str(), kTexts, nullptr, nullptr, &bytes);
  if (found == ERROR_UNSUPPORTED_TYPE) return {Registry::ValueKind::NotText, {}};
  if (found != ERROR_SUCCESS) return {};
  std::u16string text(bytes / sizeof(char16_t) + 1, u'\0');
  bytes = static_cast<DWORD>(text.size() * sizeof(char16_t));
  if (RegGetValueW(key, nullptr, name.c_str(), kTexts, nullptr, text.data(), &bytes) !=
      ERROR_SUCCESS) {
    return {};
  }
  text.resize(std::char_traits<char16_t>::length(text.c_str()));
  return Value{Registry::ValueKind::Text, FromWide(text)};
}

class WindowsRegistry final : public Registry {
 public:
  bool HasKey(const std::string& key, View view) const override {
    return OpenKey(key, view).Valid();
  }

  std::vector<std::string> ValueNames(const std::string& name) const override {
    std::vector<std::string> names;
    const Unique<RegistryKey> key = OpenKey(name, View::Bits64);
    std::u16string buffer(kLongestValueName + 1, u'\0');
    DWORD length = kLongestValueName + 1;
    for (DWORD i = 0; key.Valid() && RegEnumValueW(key.Get(), i, buffer.data(), &length, nullptr,
                                                   nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i) {
      names.push_back(FromWide(buffer.substr(0, length)));
      length = kLongestValueName + 1;
    }
    return names;
  }

  Value Read(const std::string& name, const std::string& value) const override {
    const Unique<RegistryKey> key = OpenKey(name, View::Bits64);
    return key.Valid() ? ReadText(key.Get(), ToWide(value)) : Value{};
  }

  std::string FindFile(const std::string& path) const override {
    const std::u16string wide = ToWide(path);
    char16_t found[MAX_PATH] = u"";
    const DWORD length =
        SearchPathW(nullptr, wide.c_str(), u".dll", std::size(found), found, nullptr);
    return length > 0 && length < std::size(found) ? FromWide(found) : "";
  }
};

const WindowsRegistry windowsRegistry;

}  // namespace

std::unique_ptr<ModuleLibrary> ModuleLibrary::Open(const std::string& path, std::string& error) {
  Unique<Dll> module(IsDosPath(path) ? LoadLibraryW(ToWide(path).c_str()) : LoadFromUnixPath(path));
  if (!module.Valid()) {
    error = LastErrorText();
    return nullptr;
  }
  return std::make_unique<DllLibrary>(std::move(module));
}

const Registry* SystemRegistry() {
  return &windowsRegistry;
}

}  // namespace Host
