#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace Vask::Tests {

// Returns the path of a file of this build, from its place below the build folder. Each
// test program lies at tests/<room>/ in that folder, so the programs may be taken to
// another machine, with the same folders. Any thread may call it.
inline std::string InBuildFolder(const std::string& place) {
#if defined(_WIN32)
  const std::filesystem::path program = _pgmptr;
#else
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
#endif
  return (program.parent_path().parent_path().parent_path() / place).string();
}

}  // namespace Vask::Tests
