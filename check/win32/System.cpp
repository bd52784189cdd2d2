#include "check/win32/System.h"

#include <aclapi.h>
#include <sddl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Check {
namespace {

struct LocalFreer {
  void operator()(void* memory) const noexcept { LocalFree(memory); }
};

std::wstring Expanded(const std::wstring& text) {
  std::wstring expanded(ExpandEnvironmentStringsW(text.c_str(), nullptr, 0), L'\0');
  const DWORD length =
      ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  if (length == 0 || length > expanded.size()) return text;
  expanded.resize(length - 1);
  return expanded;
}

// The content of a value of the registry. Its bytes need not be a whole text.
SettingValue ValueOf(const std::wstring& name, DWORD type, const std::vector<BYTE>& bytes) {
  SettingValue value;
  value.name = Narrow(name);
  if (type == REG_DWORD && bytes.size() >= sizeof value.number) {
    std::memcpy(&value.number, bytes.data(), sizeof value.number);
    value.isNumber = true;
  }
  if (type == REG_SZ || type == REG_EXPAND_SZ) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    text.resize(std::min(text.find(L'\0'), text.size()));
    value.text = Narrow(type == REG_EXPAND_SZ ? Expanded(text) : text);
  }
  return value;
}

std::string SidText(PSID sid) {
  wchar_t* text = nullptr;
  if (!ConvertSidToStringSidW(sid, &text)) return {};
  const std::unique_ptr<wchar_t, LocalFreer> owner(text);
  return Narrow(text);
}

// An entry that concerns the object itself. Empty for entries of other kinds.
std::optional<AccessEntry> EntryOf(const ACE_HEADER* header) {
  const bool allows = header->AceType == ACCESS_ALLOWED_ACE_TYPE;
  if ((!allows && header->AceType != ACCESS_DENIED_ACE_TYPE) ||
      (header->AceFlags & INHERIT_ONLY_ACE) != 0) {
    return {};
  }
  // Entries that allow and entries that deny have the same members.
  const auto* entry = reinterpret_cast<const ACCESS_ALLOWED_ACE*>(header);
  DWORD rights = entry->Mask;
  GENERIC_MAPPING mapping{FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE,
                          FILE_ALL_ACCESS};
  MapGenericMask(&rights, &mapping);
  return AccessEntry{allows, rights, SidText(const_cast<DWORD*>(&entry->SidStart))};
}

}  // namespace

std::string Narrow(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), size, nullptr, nullptr);
  return narrow;
}

std::wstring Wide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), size);
  return wide;
}

std::string ErrorText(DWORD error) {
  if (error == ERROR_ACCESS_DENIED) {
    return "access is denied, run this program as an administrator";
  }
  return "Windows error " + std::to_string(error);
}

bool IsMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
         error == ERROR_INVALID_NAME || error == ERROR_BAD_NETPATH || error == ERROR_NOT_READY;
}

UniqueSystemHandle Own(HANDLE handle) {
  return UniqueSystemHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

std::string LocalText(const FILETIME& time) {
  SYSTEMTIME utc{};
  SYSTEMTIME local{};
  if (!FileTimeToSystemTime(&time, &utc) ||
      !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
    return {};
  }
  char text[48];
  static_cast<void>(std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u",
                                  unsigned{local.wYear}, unsigned{local.wMonth},
                                  unsigned{local.wDay}, unsigned{local.wHour},
                                  unsigned{local.wMinute}, unsigned{local.wSecond}));
  return text;
}

FILETIME Now() {
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  return now;
}

MachineKey::MachineKey(const std::string& path, View view)
    : m_error(RegOpenKeyExW(HKEY_LOCAL_MACHINE, Wide(path).c_str(), 0,
                            KEY_READ | static_cast<DWORD>(view), &m_key)) {}

MachineKey::~MachineKey() {
  if (IsOpen()) RegCloseKey(m_key);
}

std::vector<SettingValue> MachineKey::Values() const {
  std::vector<SettingValue> values;
  constexpr DWORD kLongestName = 16384;  // Windows' own limit
  std::vector<wchar_t> name(kLongestName);
  DWORD largest = 0;
  if (RegQueryInfoKeyW(m_key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr, &largest, nullptr, nullptr) != ERROR_SUCCESS) {
    return values;
  }
  for (DWORD i = 0;; ++i) {
    DWORD length = kLongestName;
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes(largest);
    DWORD size = largest;
    const LSTATUS error =
        RegEnumValueW(m_key, i, name.data(), &length, nullptr, &type, bytes.data(), &size);
    if (error == ERROR_MORE_DATA) continue;  // the value has grown meanwhile
    if (error != ERROR_SUCCESS) return values;
    bytes.resize(size);
    values.push_back(ValueOf(std::wstring(name.data(), length), type, bytes));
  }
}

std::vector<std::string> MachineKey::SubKeys() const {
  std::vector<std::string> names;
  wchar_t name[256];  // one more than the longest name of a key
  DWORD length = 256;
  for (DWORD i = 0;
       RegEnumKeyExW(m_key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
       ++i) {
    names.push_back(Narrow(std::wstring_view(name, length)));
    length = 256;
  }
  return names;
}

std::string MachineKey::Text(const std::string& name) const {
  for (const SettingValue& value : Values()) {
    if (CompareStringOrdinal(Wide(value.name).c_str(), -1, Wide(name).c_str(), -1, TRUE) ==
        CSTR_EQUAL) {
      return value.text;
    }
  }
  return {};
}

std::optional<std::uint32_t> MachineKey::Number(const std::string& name) const {
  DWORD number = 0;
  DWORD size = sizeof number;
  DWORD type = REG_NONE;
  if (RegQueryValueExW(m_key, Wide(name).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&number),
                       &size) != ERROR_SUCCESS ||
      type != REG_DWORD) {
    return {};
  }
  return number;
}

FileContent ReadFileTail(const std::string& path, std::size_t limit) {
  FileContent content;
  const UniqueSystemHandle file = Own(CreateFileW(
      Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size{};
  if (!file.Valid() || !GetFileSizeEx(file.Get(), &size)) {
    content.error = GetLastError();
    return content;
  }
  const auto whole = static_cast<std::uint64_t>(size.QuadPart);
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(whole, limit));
  LARGE_INTEGER start{};
  start.QuadPart = static_cast<LONGLONG>(whole - wanted);
  content.bytes.resize(wanted);
  DWORD read = 0;
  if (!SetFilePointerEx(file.Get(), start, nullptr, FILE_BEGIN) ||
      !ReadFile(file.Get(), content.bytes.data(), static_cast<DWORD>(wanted), &read, nullptr)) {
    content.error = GetLastError();
  }
  content.bytes.resize(read);
  return content;
}

AccessFacts ReadAccess(const std::string& path) {
  AccessFacts access;
  ACL* list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error =
      GetNamedSecurityInfoW(Wide(path).data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                            nullptr, &list, nullptr, &descriptor);
  if (error != ERROR_SUCCESS) {
    access.whyUnknown = ErrorText(error);
    return access;
  }
  const std::unique_ptr<void, LocalFreer> owner(descriptor);
  access.open = list == nullptr;
  for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
    void* entry = nullptr;
    if (!GetAce(list, i, &entry)) break;
    if (const auto known = EntryOf(static_cast<const ACE_HEADER*>(entry))) {
      access.entries.push_back(*known);
    }
  }
  return access;
}

}  // namespace Check
