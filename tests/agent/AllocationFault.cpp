#include "tests/agent/AllocationFault.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace Agent::Tests {

namespace {

constexpr int kAll = std::numeric_limits<int>::max();

std::atomic<std::ptrdiff_t> heldBlocks{0};
thread_local int allowedAllocations = kAll;

void* Allocate(std::size_t bytes) noexcept {
  if (allowedAllocations == 0) return nullptr;
  if (allowedAllocations != kAll) --allowedAllocations;
  void* const block = std::malloc(bytes == 0 ? 1 : bytes);
  if (block != nullptr) heldBlocks.fetch_add(1, std::memory_order_relaxed);
  return block;
}

void* AllocateOrThrow(std::size_t bytes) {
  void* const block = Allocate(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void Release(void* block) noexcept {
  if (block != nullptr) heldBlocks.fetch_sub(1, std::memory_order_relaxed);
  std::free(block);
}

}  // namespace

std::ptrdiff_t HeldBlocks() {
  return heldBlocks.load(std::memory_order_relaxed);
}

FailingAllocations::FailingAllocations(int allowed) {
  allowedAllocations = allowed;
}
FailingAllocations::~FailingAllocations() {
  allowedAllocations = kAll;
}

}  // namespace Agent::Tests

using Agent::Tests::Allocate;
using Agent::Tests::AllocateOrThrow;
using Agent::Tests::Release;

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
