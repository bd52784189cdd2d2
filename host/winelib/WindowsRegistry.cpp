#include <cstddef>
#include <iterator>

#include "host/Registration.h"
#include "host/winelib/WideText.h"

// After the host's own headers: it defines a macro for every second English word.
#include <windows.h>

namespace Host {
namespace {

constexpr DWORD kLongestValueName = 16383;  // characters; Windows' own limit

// A key of HKEY_LOCAL_MACHINE, open for reading while this lives.
class Key {
 public:
  Key(const std::string& name, Registry::View view) {
    const REGSAM bits = view == Registry::View::Bits64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
    m_open = RegOpenKeyExW(HKEY_LOCAL_MACHINE, ToWide(name).c_str(), 0, KEY_READ | bits, &m_key) ==
             ERROR_SUCCESS;
  }
  ~Key() {
    if (m_open) RegCloseKey(m_key);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  [[nodiscard]] bool IsOpen() const { return m_open; }
  [[nodiscard]] HKEY Get() const { return m_key; }

 private:
  HKEY m_key = nullptr;
  bool m_open = false;
};

// What is expanded (REG_EXPAND_SZ) counts as this as well.
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
  return Value{Registry::ValueKind::Text, FromWide(text.c_str())};
}

class WindowsRegistry final : public Registry {
 public:
  bool HasKey(const std::string& key, View view) const override { return Key(key, view).IsOpen(); }

  std::vector<std::string> ValueNames(const std::string& name) const override {
    std::vector<std::string> names;
    const Key key(name, View::Bits64);
    std::u16string buffer(kLongestValueName + 1, u'\0');
    DWORD length = kLongestValueName + 1;
    for (DWORD i = 0; key.IsOpen() && RegEnumValueW(key.Get(), i, buffer.data(), &length, nullptr,
                                                    nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i) {
      names.push_back(FromWide(buffer.substr(0, length)));
      length = kLongestValueName + 1;
    }
    return names;
  }

  Value Read(const std::string& name, const std::string& value) const override {
    const Key key(name, View::Bits64);
    return key.IsOpen() ? ReadText(key.Get(), ToWide(value)) : Value{};
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

const Registry* SystemRegistry() {
  return &windowsRegistry;
}

}  // namespace Host
