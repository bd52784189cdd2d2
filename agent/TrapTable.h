#pragma once

#include <cstdint>
#include <optional>

#include "agent/TrapEntry.h"
#include "agent/TrapQueue.h"
#include "json/StrDict3.h"
#include "platform/Event.h"
#include "platform/Snmp.h"

namespace Agent {

// The traps that the agent knows, by name, and those that wait to be sent.
//
// Threads: registration happens on one thread, before anybody else uses the
// table; every other operation may be called from any thread.
class TrapTable {
 public:
  // `prefix` refers to memory that outlives the table.
  TrapTable(const AsnObjectIdentifier& prefix, Vask::Platform::Threading& threading)
      : m_prefix(prefix), m_event(Vask::Platform::EventReset::Automatic, threading) {}
  ~TrapTable();
  TrapTable(const TrapTable&) = delete;
  TrapTable& operator=(const TrapTable&) = delete;

  // Registers a trap, logs it, and answers the new entry, which the table owns:
  // null when the name is empty or taken (the first number stays). Throws
  // std::bad_alloc, and has done nothing, when there is no memory. Tries for the
  // event if it could not be had before, so no other thread may know the table yet.
  TRAP_ENTRY* Register(std::uint32_t specificTrap, const char* name);

  // The trap of that name in any spelling of its letters; null when there is none.
  [[nodiscard]] TRAP_ENTRY* Find(const char* name) const;

  // Forgets what was sent, queues the trap and signals the event. False for an
  // unknown name, which changes nothing. Without memory for the record nothing
  // is queued, and the answer is true all the same.
  bool Queue(const char* name);

  // Hands out the next trap that waits and counts it as sent.
  [[nodiscard]] std::optional<TrapQueue::Trap> Take() { return m_queue.Take(); }

  // Signalled once for every trap queued, and reset by whoever waited on it.
  // Stays this object's; the handle is good until the object goes.
  [[nodiscard]] Vask::Platform::NativeHandle EventHandle() const noexcept {
    return m_event.Handle();
  }

  // Records held, waiting or sent.
  [[nodiscard]] std::size_t QueuedCount() const noexcept { return m_queue.Count(); }

 private:
  AsnObjectIdentifier m_prefix;
  Vask::StrDict3<TRAP_ENTRY*> m_traps;
  TrapQueue m_queue;
  Vask::Platform::Event m_event;
};

}  // namespace Agent
