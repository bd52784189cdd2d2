#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Contract {

// Libraries, programs and what a process holds, as the operating system has
// them: one implementation per system beside this header.

// Null when it cannot be loaded.
void* LoadLibraryFile(const std::string& path);
void* FindFunction(void* library, const char* name);
void UnloadLibrary(void* library);

// Runs a program to its end and answers its exit status; -1 when it cannot be
// started. Arguments contain neither blanks nor quotes.
int RunProgram(const std::string& path, const std::vector<std::string>& arguments);

// A program beside this one, from construction to destruction, which ends it at
// once and waits until it is gone.
class Companion {
 public:
  // Arguments as for RunProgram. Exits when the program cannot be started.
  Companion(const std::string& path, const std::vector<std::string>& arguments);
  ~Companion();
  Companion(const Companion&) = delete;
  Companion& operator=(const Companion&) = delete;

 private:
  std::intptr_t m_process;
};

// Handles or descriptors that this process has open.
std::size_t OpenHandles();

// Threads of this process.
std::size_t RunningThreads();

// Slots for values that each thread has its own of, and that nobody has taken: a
// process has about a thousand.
std::size_t FreeThreadSlots();

// Bytes that this process has asked its heaps for and not given back: exact, and
// no matter of pages. CountWholeHeap comes first, before there are threads.
std::size_t HeldMemory();
void CountWholeHeap();

// Bytes of memory that this process has pages for, files' pages apart.
std::size_t ResidentMemory();

}  // namespace Contract
