// Memory for the C++ library itself when the system has none left.
//
// Want of memory is told by an exception, and the library, which is part of this
// module, asks the C library for memory to throw one: for the exception, and for
// the lock of what it keeps in reserve. A refusal of the latter is one more
// exception, and so on until the stack is at its end. So what the library is
// refused is served from here, and the module's own allocations, through operator
// new below, fail as they should. The module is linked so that malloc and its kin
// mean these.

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void __real_free(void* block);

void* __wrap_malloc(std::size_t bytes);
void* __wrap_calloc(std::size_t count, std::size_t bytes);
void* __wrap_realloc(void* block, std::size_t bytes);
void __wrap_free(void* block);
}

namespace {

// A slot holds any exception of ours; a thread needs one or two at a time.
constexpr std::size_t kSlotBytes = 512;
constexpr std::size_t kSlots = 64;

alignas(std::max_align_t) constinit unsigned char g_slots[kSlots][kSlotBytes] = {};
constinit std::atomic<std::uint64_t> g_taken{0};  // a bit for each slot

void* TakeSlot(std::size_t bytes) noexcept {
  if (bytes > kSlotBytes) return nullptr;
  std::uint64_t taken = g_taken.load(std::memory_order_relaxed);
  while (taken != UINT64_MAX) {
    const int slot = std::countr_one(taken);
    if (g_taken.compare_exchange_weak(taken, taken | std::uint64_t{1} << slot)) {
      return g_slots[slot];
    }
  }
  return nullptr;
}

bool IsSlot(const void* block) noexcept {
  return reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(g_slots) <
         sizeof g_slots;
}

void ReleaseSlot(const void* block) noexcept {
  const std::size_t offset =
      reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(g_slots);
  g_taken.fetch_and(~(std::uint64_t{1} << offset / kSlotBytes));
}

}  // namespace

void* __wrap_malloc(std::size_t bytes) {
  void* const block = __real_malloc(bytes);
  return block != nullptr ? block : TakeSlot(bytes);
}

// The library asks for one thing at a time: `count` is 1 or `bytes` is.
void* __wrap_calloc(std::size_t count, std::size_t bytes) {
  void* const block = __real_calloc(count, bytes);
  if (block != nullptr || (count != 1 && bytes != 1)) return block;
  void* const slot = TakeSlot(count * bytes);
  return slot != nullptr ? std::memset(slot, 0, count * bytes) : nullptr;
}

void* __wrap_realloc(void* block, std::size_t bytes) {
  if (!IsSlot(block)) return __real_realloc(block, bytes);
  if (bytes <= kSlotBytes) return block;
  void* const larger = __real_malloc(bytes);
  if (larger == nullptr) return nullptr;
  std::memcpy(larger, block, kSlotBytes);
  ReleaseSlot(block);
  return larger;
}

void __wrap_free(void* block) {
  IsSlot(block) ? ReleaseSlot(block) : __real_free(block);
}

void* operator new(std::size_t bytes) {
  void* const block = __real_malloc(bytes);
  return block != nullptr ? block : throw std::bad_alloc();
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return __real_malloc(bytes);
}
