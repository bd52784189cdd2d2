#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Check {

// One entry of an access control list.
struct AccessEntry {
  bool allows = false;  // otherwise it denies
  std::uint32_t rights = 0;
  std::string sid;  // "S-1-5-18"
};

// Who may do what with a file or folder.
struct AccessFacts {
  std::vector<AccessEntry> entries;  // in the order in which Windows reads them
  bool open = false;                 // there is no list: everybody may do everything
  std::string whyUnknown;
};

// Rights of files and folders, as Windows counts them.
inline constexpr std::uint32_t kRightToRead = 0x1;      // a file's content
inline constexpr std::uint32_t kRightToAddFile = 0x2;   // in a folder
inline constexpr std::uint32_t kRightToExecute = 0x20;  // a file
inline constexpr std::uint32_t kRightToReadAndExecute = kRightToRead | kRightToExecute;

// Whether an account that has these identifiers (its own and its groups') has all of `rights`.
// The first entry that decides about a right holds.
[[nodiscard]] bool HasRights(const AccessFacts& access, const std::vector<std::string>& sids,
                             std::uint32_t rights);

// The identifiers of one of Windows' own accounts for services, and of its groups. Empty for any
// other account, whose groups are not known.
[[nodiscard]] std::vector<std::string> SidsOf(const std::string& account);

}  // namespace Check
