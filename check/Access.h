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

// The rights of accounts for a file or folder.
struct AccessFacts {
  std::vector<AccessEntry> entries;  // in the order in which Windows reads them
  bool open = false;                 // there is no list: every account has all rights
  std::string whyUnknown;
};

// Windows' numbers for the rights of files and folders.
inline constexpr std::uint32_t kRightToRead = 0x1;      // a file's content
inline constexpr std::uint32_t kRightToAddFile = 0x2;   // in a folder
inline constexpr std::uint32_t kRightToExecute = 0x20;  // a file
inline constexpr std::uint32_t kRightToReadAndExecute = kRightToRead | kRightToExecute;

// True if an account with these identifiers (its own and those of its groups) has all of
// `rights`. The first entry that decides about a right holds.
[[nodiscard]] bool HasRights(const AccessFacts& access, const std::vector<std::string>& sids,
                             std::uint32_t rights);

// Returns the identifiers of one of Windows' own accounts for services, and of its groups. Empty
// for any other account, because the groups of others are not known.
[[nodiscard]] std::vector<std::string> SidsOf(const std::string& account);

}  // namespace Check
