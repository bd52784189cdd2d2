#include "tests/support/AllocationCounter.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CORVANE_SANITIZER_ALLOCATES
#include <sanitizer/allocator_interface.h>
#endif
#endif

namespace {

constinit std::atomic<std::uint64_t> g_allocations{0};
constinit std::atomic<std::ptrdiff_t> g_heldBlocks{0};

}  // namespace

namespace Vask::Tests {

std::uint64_t Allocations() noexcept {
  return g_allocations.load(std::memory_order_relaxed);
}

std::ptrdiff_t HeldBlocks() {
  return g_heldBlocks.load(std::memory_order_relaxed);
}

}  // namespace Vask::Tests

#if defined(CORVANE_SANITIZER_ALLOCATES)

namespace {

void OnMalloc(const volatile void*, std::size_t) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
}
void OnFree(const volatile void*) {}

[[maybe_unused]] const int g_installed =
    __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);

}  // namespace

#else

namespace {

void* Allocate(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  g_heldBlocks.fetch_add(1, std::memory_order_relaxed);
  return memory;
}

void Free(void* memory) noexcept {
  if (memory != nullptr) g_heldBlocks.fetch_sub(1, std::memory_order_relaxed);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  return Allocate(size);
}
void* operator new[](std::size_t size) {
  return Allocate(size);
}
void operator delete(void* memory) noexcept {
  Free(memory);
}
void operator delete[](void* memory) noexcept {
  Free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  Free(memory);
}

#endif
