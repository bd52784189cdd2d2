#include "agent/win32/RuntimeMemory.h"

#include <windows.h>

#include <cxxabi.h>

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

// If malloc has no memory for the library, the library gets one of these slots. The
// module's own allocations, by operator new below, still fail.

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

// A slot holds any exception of this module; a thread needs one or two at a time.
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

// The library asks for one object at a time: `count` or `bytes` is 1.
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

// NOLINTNEXTLINE(cert-dcl54-cpp,misc-new-delete-overloads): the library's delete calls free
void* operator new(std::size_t bytes) {
  void* const block = __real_malloc(bytes);
  return block != nullptr ? block : throw std::bad_alloc();
}

// NOLINTNEXTLINE(cert-dcl54-cpp,misc-new-delete-overloads): the library's delete calls free
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return __real_malloc(bytes);
}

// The lists of exceptions.

namespace {

// The library's own layout (Itanium C++ ABI, "Exception Handling", 2.2.2).
struct Exceptions {
  void* caught = nullptr;
  unsigned uncaught = 0;
};

struct Record {
  std::atomic<DWORD> thread{0};  // 0: free
  Exceptions exceptions;
};

// For the living threads that have met an exception; a service has a handful.
constexpr std::size_t kRecords = 256;
constinit Record g_records[kRecords];

// Returns null if the thread has no record.
Record* FindRecord(DWORD thread) noexcept {
  for (Record& record : g_records)
    if (record.thread.load(std::memory_order_relaxed) == thread) return &record;
  return nullptr;
}

// Returns null if no record is free.
Record* TakeRecord(DWORD thread) noexcept {
  for (Record& record : g_records) {
    DWORD nobody = 0;
    if (record.thread.compare_exchange_strong(nobody, thread)) return &record;
  }
  return nullptr;
}

Exceptions* OfThisThread() noexcept {
  const DWORD thread = GetCurrentThreadId();
  Record* record = FindRecord(thread);
  if (record == nullptr) record = TakeRecord(thread);
  if (record == nullptr) std::abort();
  return &record->exceptions;
}

}  // namespace

namespace Agent {

void ForgetThreadExceptions() noexcept {
  Record* const record = FindRecord(GetCurrentThreadId());
  if (record == nullptr) return;
  record->exceptions = {};
  record->thread.store(0, std::memory_order_release);
}

}  // namespace Agent

namespace __cxxabiv1 {

extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
  return reinterpret_cast<__cxa_eh_globals*>(OfThisThread());
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
  return reinterpret_cast<__cxa_eh_globals*>(OfThisThread());
}

}  // namespace __cxxabiv1
