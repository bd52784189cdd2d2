#pragma once

#include <cstddef>
#include <cstdint>

namespace Vask::Tests {

// The number of allocations since the start of the program, of all threads. The program
// must link AllocationCounter.cpp. It counts calls of operator new; under a sanitizer,
// whose operators cannot be replaced, it also counts calls of malloc.
std::uint64_t Allocations() noexcept;

// The number of blocks that operator new returned and that are not freed. Always 0 under a
// sanitizer, which finds leaks itself.
std::ptrdiff_t HeldBlocks();

}  // namespace Vask::Tests
