#pragma once

#include <winsock2.h>

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/Facts.h"
#include "platform/UniqueHandle.h"

// Small helpers around Windows' calls. All of them only read.
namespace Check {

// Conversions between UTF-8 and Windows' own texts.
[[nodiscard]] std::string Narrow(std::wstring_view text);
[[nodiscard]] std::wstring Wide(std::string_view text);

// "access is denied, run this program as an administrator", or "Windows error 1450".
[[nodiscard]] std::string ErrorText(DWORD error);

// True if the error means that the object does not exist.
[[nodiscard]] bool IsMissing(DWORD error);

struct SystemHandle {
  using Type = HANDLE;
  static constexpr Type None() noexcept { return nullptr; }
  void Close(Type handle) const noexcept { CloseHandle(handle); }
};
using UniqueSystemHandle = Vask::Platform::UniqueHandle<SystemHandle>;

// Owns the handle, or nothing for the two values that mean "none".
[[nodiscard]] UniqueSystemHandle Own(HANDLE handle);

// Local time as "2026-11-21 06:00:05".
[[nodiscard]] std::string LocalText(const FILETIME& time);
[[nodiscard]] FILETIME Now();

// A key below HKEY_LOCAL_MACHINE, opened for reading.
class MachineKey {
 public:
  enum class View : DWORD { k64Bit = KEY_WOW64_64KEY, k32Bit = KEY_WOW64_32KEY };

  explicit MachineKey(const std::string& path, View view = View::k64Bit);
  ~MachineKey();
  MachineKey(const MachineKey&) = delete;
  MachineKey& operator=(const MachineKey&) = delete;

  [[nodiscard]] LSTATUS Error() const { return m_error; }
  [[nodiscard]] bool IsOpen() const { return m_error == ERROR_SUCCESS; }

  [[nodiscard]] std::vector<SettingValue> Values() const;
  [[nodiscard]] std::vector<std::string> SubKeys() const;
  // A text value, with its environment variables expanded if it is of that type. Empty if none.
  [[nodiscard]] std::string Text(const std::string& name) const;
  [[nodiscard]] std::optional<std::uint32_t> Number(const std::string& name) const;

 private:
  HKEY m_key = nullptr;
  LSTATUS m_error;
};

// The last `limit` bytes of a file that others may have open. The error is 0 on success.
struct FileContent {
  std::string bytes;
  DWORD error = ERROR_SUCCESS;
};
[[nodiscard]] FileContent ReadFileTail(const std::string& path, std::size_t limit);

// The rights that the access control list of a file or folder grants.
[[nodiscard]] AccessFacts ReadAccess(const std::string& path);

}  // namespace Check
