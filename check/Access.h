#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check/Facts.h"

namespace Check {

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
