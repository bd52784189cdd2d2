#pragma once

#include <cstddef>
#include <limits>

namespace Vask::Tests {

// A program that links AllocationFault.cpp counts its allocations, and a test can let
// some of them fail: those with `new`, and also those with malloc if the program is
// linked with "--wrap=malloc,--wrap=free". The counts are of all threads. Only
// allocations of the calling thread fail.

// The number of blocks that are allocated and not freed.
std::ptrdiff_t HeldBlocks();

// While one lives, `allowed` allocations of this thread succeed, then `failures` of them
// fail, and all later ones succeed. A thread may have one at a time.
class FailingAllocations {
 public:
  static constexpr int kAllLater = std::numeric_limits<int>::max();

  explicit FailingAllocations(int allowed = 0, int failures = kAllLater);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  // True if an allocation has failed.
  [[nodiscard]] static bool Reached();
};

}  // namespace Vask::Tests
