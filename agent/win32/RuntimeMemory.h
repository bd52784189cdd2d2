#pragma once

namespace Agent {

// Memory for the C++ library itself when the system has none left.
//
// An exception reports that memory is missing. But the library, which is part of
// this module, allocates memory to throw one: for the exception, for the lock of
// its reserve, and for each thread's list of exceptions. If one of these
// allocations fails, the library throws again until the stack overflows, or ends
// the process. This file therefore serves what the library needs: the linker
// wraps malloc, calloc, realloc and free, and the file defines the library's function for the
// list. The latter also keeps the library from making a thread-specific value,
// which would leave handles behind at every unload.

// Frees the calling thread's record in the table of exception lists. Call this
// when a thread ends.
void ForgetThreadExceptions() noexcept;

}  // namespace Agent
