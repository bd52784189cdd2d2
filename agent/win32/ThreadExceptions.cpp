#include "agent/win32/ThreadExceptions.h"

#include <windows.h>

#include <cxxabi.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace {

// What the library keeps there (Itanium C++ ABI, "Exception Handling", 2.2.2).
struct Exceptions {
  void* caught = nullptr;
  unsigned uncaught = 0;
};

struct Record {
  std::atomic<DWORD> thread{0};  // 0 is no thread's
  Exceptions exceptions;
};

// Threads that have met an exception and live, of which a service has a handful.
constexpr std::size_t kRecords = 256;
constinit Record g_records[kRecords];

// Null when there is none.
Record* FindRecord(DWORD thread) noexcept {
  for (Record& record : g_records)
    if (record.thread.load(std::memory_order_relaxed) == thread) return &record;
  return nullptr;
}

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
