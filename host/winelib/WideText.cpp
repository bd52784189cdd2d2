#include "host/winelib/WideText.h"

#include <windows.h>

namespace Host {

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

}  // namespace Host
