#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Host {

// An object identifier as the host keeps it: it owns its sub-identifiers,
// compares sub-identifier by sub-identifier and then the shorter first.
using Oid = std::vector<std::uint32_t>;

// Dotted decimal text, without a leading point.
[[nodiscard]] std::string ToText(const Oid& oid);

// True when `oid` is `root` or lies under it.
[[nodiscard]] bool IsUnder(const Oid& oid, const Oid& root);

}  // namespace Host
