#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Files.h"

namespace Vask {

// One path of at most kMaxLength characters, and what its text says about it:
// no operation but CreateFolders looks at the disk. Paths use backslashes on
// every system, and a slash is taken for one. Not thread-safe.
class CFileName2 {
 public:
  static constexpr std::size_t kMaxLength = 260;  // MAX_PATH of Windows

  // A longer path becomes an empty one.
  explicit CFileName2(std::string_view path);

  [[nodiscard]] const char* Text() const { return m_path; }
  [[nodiscard]] bool Empty() const { return m_path[0] == '\0'; }

  // What names the drive, without a backslash at its end: "C:" of "C:\a\b",
  // "\\server\share" of "\\server\share\a"; empty for a path without a drive
  // and for a UNC path that names no share.
  [[nodiscard]] CFileName2 Root() const;

  // The path without its last component, up to and with the backslash before
  // it: "C:\a\" of "C:\a\b". What ends in a backslash is its own parent.
  [[nodiscard]] CFileName2 Parent() const;

  // Makes sure that a folder exists, creating it and its missing parents from
  // the outside in. False when one of them cannot be created, when the path is
  // empty or too long, and, with nothing created, when the drive is unknown,
  // absent or a CD-ROM. `files` is lent for the call.
  [[nodiscard]] static bool CreateFolders(const char* path,
                                          Platform::Files& files = Platform::SystemFiles());

 private:
  std::string_view View() const { return m_path; }
  CFileName2 WithoutTrailingBackslash() const;

  char m_path[kMaxLength + 1];
};

}  // namespace Vask
