#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Contract {

// Libraries, programs and the resources of a process. linux/ and win32/ beside this
// header implement it.

// Null if the library cannot be loaded.
void* LoadLibraryFile(const std::string& path);
void* FindFunction(void* library, const char* name);
void UnloadLibrary(void* library);

// Runs a program to its end and returns its exit status, or -1 if it cannot be
// started. Arguments must not contain blanks or quotes.
int RunProgram(const std::string& path, const std::vector<std::string>& arguments);

// A program that runs beside this one. The destructor ends it at once and waits until
// it is gone.
class Companion {
 public:
  // Arguments as for RunProgram. Exits if the program cannot be started.
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

// Free slots for thread-specific values. A process has about a thousand.
std::size_t FreeThreadSlots();

// Bytes that this process has allocated from its heaps and not freed, exactly. Call
// CountWholeHeap first, before the process has threads.
std::size_t HeldMemory();
void CountWholeHeap();

// Bytes of the pages of this process, without pages of files.
std::size_t ResidentMemory();

}  // namespace Contract
