#include "tests/contract/Library.h"

#include <dlfcn.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

namespace Contract {

void* LoadLibraryFile(const std::string& path) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) std::fprintf(stderr, "%s\n", dlerror());
  return library;
}

void* FindFunction(void* library, const char* name) {
  return dlsym(library, name);
}

void UnloadLibrary(void* library) {
  dlclose(library);
}

int RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
  std::vector<char*> argv{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawn(&child, path.c_str(), nullptr, nullptr, argv.data(), environ) != 0) return -1;
  int status = 0;
  if (waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::size_t OpenHandles() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

std::size_t HeldMemory() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace Contract
