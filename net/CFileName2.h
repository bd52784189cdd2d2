#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Files.h"

namespace Vask {

// One path of at most kMaxLength characters, and its parts. Only CreateFolders uses the
// disk. Paths have backslashes on every system; a slash counts as a backslash. Not
// thread-safe.
class CFileName2 {
 public:
  static constexpr std::size_t kMaxLength = 260;  // MAX_PATH of Windows

  // A longer path becomes an empty one.
  explicit CFileName2(std::string_view path);

  [[nodiscard]] const char* Text() const { return m_path; }
  [[nodiscard]] bool Empty() const { return m_path[0] == '\0'; }

  // The name of the drive, without a backslash at its end: "C:" of "C:\a\b",
  // "\\server\share" of "\\server\share\a". Empty for a path without a drive and for a
  // UNC path that names no share.
  [[nodiscard]] CFileName2 Root() const;

  // The path without its last component, up to and with the backslash before it: "C:\a\"
  // of "C:\a\b". A path that ends in a backslash is its own parent.
  [[nodiscard]] CFileName2 Parent() const;

  // Creates a folder and its missing parents, the outermost first. Returns true if the
  // folder exists afterwards. Returns false if the path is empty or too long or a folder
  // cannot be created. Returns false and creates nothing if the drive is unknown, absent
  // or a CD-ROM. `files` is lent for the call.
  [[nodiscard]] static bool CreateFolders(const char* path,
                                          Platform::Files& files = Platform::SystemFiles());

 private:
  std::string_view View() const { return m_path; }
  CFileName2 WithoutTrailingBackslash() const;

  char m_path[kMaxLength + 1];
};

}  // namespace Vask
