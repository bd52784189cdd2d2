#include "tests/contract/Library.h"

#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

namespace {

// Returns -1 on failure.
pid_t Spawn(const std::string& path, const std::vector<std::string>& arguments) {
  std::vector<char*> argv{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  pid_t child = -1;
  return posix_spawn(&child, path.c_str(), nullptr, nullptr, argv.data(), environ) == 0 ? child
                                                                                        : -1;
}

// Returns -1 if a signal ended the process.
int WaitForEnd(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The number in a line of /proc/self/status, as "RssAnon:      1234 kB". 0 if there is no
// such line.
std::size_t StatusLine(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t value = 0;
    if (word == name + ":" && status >> value) return value;
  }
  return 0;
}

}  // namespace

int RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
  const pid_t child = Spawn(path, arguments);
  return child == -1 ? -1 : WaitForEnd(child);
}

Companion::Companion(const std::string& path, const std::vector<std::string>& arguments)
    : m_process(Spawn(path, arguments)) {
  if (m_process != -1) return;
  std::fprintf(stderr, "%s does not start\n", path.c_str());
  std::exit(2);
}

Companion::~Companion() {
  kill(static_cast<pid_t>(m_process), SIGKILL);
  WaitForEnd(static_cast<pid_t>(m_process));
}

std::size_t OpenHandles() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

std::size_t RunningThreads() {
  return StatusLine("Threads");
}

std::size_t FreeThreadSlots() {
  std::vector<pthread_key_t> taken;
  for (pthread_key_t slot = 0; pthread_key_create(&slot, nullptr) == 0;) taken.push_back(slot);
  for (const pthread_key_t slot : taken) pthread_key_delete(slot);
  return taken.size();
}

// The address sanitizer's own heap, if the program has it.
extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes();

std::size_t HeldMemory() {
  if (__sanitizer_get_current_allocated_bytes != nullptr)
    return __sanitizer_get_current_allocated_bytes();
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// mallinfo2 counts only the first arena.
void CountWholeHeap() {
  mallopt(M_ARENA_MAX, 1);
}

std::size_t ResidentMemory() {
  return StatusLine("RssAnon") * 1024;
}

}  // namespace Contract
