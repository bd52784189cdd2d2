#pragma once

#include <cstdint>

namespace Vask::Tests {

// Calls of operator new since the program began, by any thread. Programs that
// link AllocationCounter.cpp count them.
std::uint64_t Allocations() noexcept;

}  // namespace Vask::Tests
