#pragma once

#include <cstddef>

namespace Agent::Tests {

// Every allocation of this program with `new` is counted, and a test may have
// some fail. Counts of all threads; failing is for the calling thread only.

// Blocks that are held at present.
std::ptrdiff_t HeldBlocks();

// While one lives, this thread's allocations fail once `allowed` of them were made.
class FailingAllocations {
 public:
  explicit FailingAllocations(int allowed = 0);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace Agent::Tests
