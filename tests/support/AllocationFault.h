#pragma once

#include <cstddef>
#include <limits>

namespace Vask::Tests {

// Every allocation of a program that links AllocationFault.cpp is counted, and a
// test may have some fail: those with `new`, and, where the program is linked
// with "--wrap=malloc,--wrap=free", those with malloc as well. Counts of all
// threads; failing is for the calling thread only.

// Blocks that are held at present.
std::ptrdiff_t HeldBlocks();

// While one lives, this thread makes `allowed` allocations, then fails at
// `failures` of them, and after that makes them again. One at a time.
class FailingAllocations {
 public:
  static constexpr int kAllLater = std::numeric_limits<int>::max();

  explicit FailingAllocations(int allowed = 0, int failures = kAllLater);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  // Whether any has failed so far.
  [[nodiscard]] static bool Reached();
};

}  // namespace Vask::Tests
