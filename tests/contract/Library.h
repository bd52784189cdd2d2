#pragma once

#include <cstddef>
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

// Handles or descriptors that this process has open.
std::size_t OpenHandles();

// Bytes of memory that this process has asked for and not given back.
std::size_t HeldMemory();

}  // namespace Contract
