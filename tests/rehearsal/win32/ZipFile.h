#pragma once

#include <filesystem>

namespace Rehearsal {

// Writes all files below `folder` into a new zip at `zip`, without compression: no zip
// program is on every Windows. Folders without files are left out. Together the files must
// have less than 4 GB, the limit of the format. Returns false if a file cannot be read or
// the zip cannot be written.
[[nodiscard]] bool WriteZip(const std::filesystem::path& folder, const std::filesystem::path& zip);

}  // namespace Rehearsal
