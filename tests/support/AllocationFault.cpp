#include "tests/support/AllocationFault.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace Vask::Tests {

namespace {

std::atomic<std::ptrdiff_t> heldBlocks{0};

// The calling thread's plan.
thread_local bool planned = false;
thread_local int allowedAllocations = 0;
thread_local int plannedFailures = 0;
thread_local bool reached = false;

bool Fails() noexcept {
  if (!planned) return false;
  if (allowedAllocations > 0) return --allowedAllocations, false;
  if (plannedFailures == 0) return false;
  if (plannedFailures != FailingAllocations::kAllLater) --plannedFailures;
  return reached = true;
}

void* Count(void* block) noexcept {
  if (block != nullptr) heldBlocks.fetch_add(1, std::memory_order_relaxed);
  return block;
}

void Uncount(const void* block) noexcept {
  if (block != nullptr) heldBlocks.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace

std::ptrdiff_t HeldBlocks() {
  return heldBlocks.load(std::memory_order_relaxed);
}

FailingAllocations::FailingAllocations(int allowed, int failures) {
  allowedAllocations = allowed;
  plannedFailures = failures;
  reached = false;
  planned = true;
}
FailingAllocations::~FailingAllocations() {
  planned = false;
}
bool FailingAllocations::Reached() {
  return reached;
}

}  // namespace Vask::Tests

using Vask::Tests::Count;
using Vask::Tests::Fails;
using Vask::Tests::Uncount;

#if defined(CORVANE_MALLOC_IS_WRAPPED)

extern "C" {

void* __real_malloc(std::size_t bytes);
void __real_free(void* block);

void* __wrap_malloc(std::size_t bytes) {
  return Fails() ? nullptr : Count(__real_malloc(bytes));
}
void __wrap_free(void* block) {
  Uncount(block);
  __real_free(block);
}

}  // extern "C"

namespace {

void* Allocate(std::size_t bytes) noexcept {
  return __wrap_malloc(bytes == 0 ? 1 : bytes);
}
void Release(void* block) noexcept {
  __wrap_free(block);
}

}  // namespace

#else

namespace {

void* Allocate(std::size_t bytes) noexcept {
  return Fails() ? nullptr : Count(std::malloc(bytes == 0 ? 1 : bytes));
}
void Release(void* block) noexcept {
  Uncount(block);
  std::free(block);
}

}  // namespace

#endif

namespace {

void* AllocateOrThrow(std::size_t bytes) {
  void* const block = Allocate(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

void* operator new(std::size_t bytes) {
  return AllocateOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
  return AllocateOrThrow(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return Allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return Allocate(bytes);
}
void operator delete(void* block) noexcept {
  Release(block);
}
void operator delete[](void* block) noexcept {
  Release(block);
}
void operator delete(void* block, std::size_t) noexcept {
  Release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  Release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
  Release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  Release(block);
}
