#include "tests/support/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constinit std::atomic<std::uint64_t> g_allocations{0};

void* Allocate(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

namespace Vask::Tests {

std::uint64_t Allocations() noexcept {
  return g_allocations.load(std::memory_order_relaxed);
}

}  // namespace Vask::Tests

void* operator new(std::size_t size) {
  return Allocate(size);
}
void* operator new[](std::size_t size) {
  return Allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
