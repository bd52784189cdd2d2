// Runs one fuzz target with the files of the folders in the arguments, in the order of
// the file names, and prints the number of files.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/FuzzInput.h"

namespace {

void Replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  // A copy of exactly this size, so that the address sanitizer reports a read past the
  // end.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  std::printf("%s\n", path.filename().string().c_str());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> paths;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  for (const auto& path : paths) Replay(path);
  // A missing corpus must not look like a success.
  std::printf("%zu passed, %d failed\n", paths.size(), paths.empty() ? 1 : 0);
  return paths.empty() ? 1 : 0;
}
