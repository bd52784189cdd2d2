#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "json/StrDict3.h"
#include "platform/CriticalSection.h"
#include "platform/Event.h"
#include "platform/Snmp.h"

namespace Agent {

// One kind of trap that the agent can send.
struct TRAP_ENTRY {
  std::uint32_t m_specificTrap;  // the number by which managers tell traps apart
  std::string m_name;
};

// The traps that wait for the SNMP service, in the order in which they were
// queued. A record that was taken stays until the next purge.
//
// Threads: any thread may call any operation at any time; one may queue while
// another takes and a third purges. Only the queue's lock blocks, and no thread
// holds it while it frees memory.
//
// Records leave in the order in which they came, so the sent ones always stand
// before the waiting ones. A purge therefore costs only what it removes, and
// Take looks at one record, however long the queue is.
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

  // Appends a record. Returns false if there is no memory for it.
  [[nodiscard]] bool Append(std::uint32_t specificTrap, const std::string& name) noexcept;

  // Returns a copy of the first waiting record and marks the record sent. Returns
  // nothing if none waits. Throws std::bad_alloc if there is no memory for the
  // copy; the record then keeps waiting.
  [[nodiscard]] std::optional<Trap> Take();

  // Removes all sent records and keeps the order of the rest.
  void PurgeSent() noexcept;

  // The number of records, waiting or sent.
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
  Record* m_waiting VASK_GUARDED_BY(m_lock) = nullptr;  // the first that was not sent
  std::size_t m_count VASK_GUARDED_BY(m_lock) = 0;
  std::size_t m_sentCount VASK_GUARDED_BY(m_lock) = 0;
};

// The traps that the agent knows, by name, and those that wait to be sent.
//
// Threads: one thread registers the traps, before any other uses the table; any
// thread may call every other operation.
class TrapTable {
 public:
  // `prefix` refers to memory that outlives the table.
  TrapTable(const AsnObjectIdentifier& prefix, Vask::Platform::Threading& threading)
      : m_prefix(prefix), m_event(Vask::Platform::EventReset::Automatic, threading) {}
  ~TrapTable();
  TrapTable(const TrapTable&) = delete;
  TrapTable& operator=(const TrapTable&) = delete;

  // Registers a trap, logs it and returns the new entry, which the table owns.
  // Returns null if the name is empty or taken (the first number stays). Throws
  // std::bad_alloc, and has changed nothing, if there is no memory. Creates the
  // event if the system refused it before, so no other thread may use the table
  // yet.
  TRAP_ENTRY* Register(std::uint32_t specificTrap, const char* name);

  // Returns the trap of that name, or null. The case of letters does not matter.
  [[nodiscard]] TRAP_ENTRY* Find(const char* name) const;

  // Removes the sent records, queues the trap and signals the event. Returns
  // false, and changes nothing, if the name is unknown. If there is no memory for
  // the record, queues nothing and returns true.
  bool Queue(const char* name);

  // Returns the next waiting trap and counts it as sent.
  [[nodiscard]] std::optional<TrapQueue::Trap> Take() { return m_queue.Take(); }

  // Signalled once for every queued trap; a wait resets it. The table owns the
  // handle, which is valid until the table is destroyed.
  [[nodiscard]] Vask::Platform::NativeHandle EventHandle() const noexcept {
    return m_event.Handle();
  }

  // The number of records, waiting or sent.
  [[nodiscard]] std::size_t QueuedCount() const noexcept { return m_queue.Count(); }

 private:
  AsnObjectIdentifier m_prefix;
  Vask::StrDict3<TRAP_ENTRY*> m_traps;
  TrapQueue m_queue;
  Vask::Platform::Event m_event;
};

}  // namespace Agent
