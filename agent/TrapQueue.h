#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/CriticalSection.h"

namespace Agent {

// The traps that wait to be handed to the SNMP service, in the order in which
// they were queued. A record that was handed out stays until the next purge.
//
// Threads: every operation may be called from any thread at any time; one may
// queue while another takes and a third purges. None blocks but for the queue's
// lock, which is never held while memory is freed.
//
// Records leave in the order in which they came, so those that were handed out
// always stand in front of those that wait: a purge costs what it removes, and
// taking looks at one record, however long the queue is.
class TrapQueue {
 public:
  struct Trap {
    std::uint32_t m_specificTrap;
    std::string m_name;
  };

  TrapQueue() = default;
  ~TrapQueue();
  TrapQueue(const TrapQueue&) = delete;
  TrapQueue& operator=(const TrapQueue&) = delete;

  // Appends a record; false when there is no memory for it.
  [[nodiscard]] bool Append(std::uint32_t specificTrap, const std::string& name) noexcept;

  // Hands out the first record that waits, as a copy, and marks it sent;
  // nothing when none waits. Throws std::bad_alloc when there is no memory for
  // the copy; the record waits on then.
  [[nodiscard]] std::optional<Trap> Take();

  // Removes every record that was handed out and keeps the order of the rest.
  void PurgeSent() noexcept;

  // Records that are held, waiting or handed out.
  [[nodiscard]] std::size_t Count() const noexcept;

 private:
  struct Record {
    Trap m_trap;
    Record* m_next = nullptr;
  };
  static Record* MakeRecord(std::uint32_t specificTrap, const std::string& name) noexcept;
  static void Free(Record* first, const Record* end) noexcept;

  mutable Vask::Platform::CriticalSection m_lock{Vask::Platform::LockRank::TrapQueue};
  Record* m_first VASK_GUARDED_BY(m_lock) = nullptr;
  Record* m_last VASK_GUARDED_BY(m_lock) = nullptr;
  Record* m_waiting VASK_GUARDED_BY(m_lock) = nullptr;  // first that was not handed out
  std::size_t m_count VASK_GUARDED_BY(m_lock) = 0;
  std::size_t m_sentCount VASK_GUARDED_BY(m_lock) = 0;
};

}  // namespace Agent
