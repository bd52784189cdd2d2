#pragma once

#include <cstdint>

namespace Vask::Tests {

// Pieces of memory taken from the heap since the program began, by any thread.
// Programs that link AllocationCounter.cpp count them: calls of operator new,
// or, under a sanitizer, whose own operators stay in place, of malloc too.
std::uint64_t Allocations() noexcept;

}  // namespace Vask::Tests
