#include "agent/TrapTable.h"

#include <memory>
#include <new>
#include <utility>

#include "Src/LogPrinter.h"
#include "agent/ObjectIdentifier.h"

namespace Agent {

using Vask::LogPrinter;
using Vask::Platform::CriticalSectionLock;

TrapQueue::~TrapQueue() {
  Free(m_first, nullptr);
}

void TrapQueue::Free(Record* first, const Record* end) noexcept {
  while (first != end) delete std::exchange(first, first->m_next);
}

TrapQueue::Record* TrapQueue::MakeRecord(std::uint32_t specificTrap,
                                         const std::string& name) noexcept {
  try {
    return new Record{{specificTrap, name}};
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool TrapQueue::Append(std::uint32_t specificTrap, const std::string& name) noexcept {
  Record* const record = MakeRecord(specificTrap, name);
  if (record == nullptr) return false;
  const CriticalSectionLock lock(m_lock);
  (m_last == nullptr ? m_first : m_last->m_next) = record;
  m_last = record;
  if (m_waiting == nullptr) m_waiting = record;
  ++m_count;
  return true;
}

std::optional<TrapQueue::Trap> TrapQueue::Take() {
  const CriticalSectionLock lock(m_lock);
  if (m_waiting == nullptr) return std::nullopt;
  std::optional<Trap> trap(m_waiting->m_trap);
  m_waiting = m_waiting->m_next;
  ++m_sentCount;
  return trap;
}

void TrapQueue::PurgeSent() noexcept {
  Record* sent = nullptr;
  const Record* end = nullptr;
  {
    const CriticalSectionLock lock(m_lock);
    sent = std::exchange(m_first, m_waiting);
    end = m_waiting;
    if (m_waiting == nullptr) m_last = nullptr;
    m_count -= std::exchange(m_sentCount, 0);
  }
  Free(sent, end);
}

std::size_t TrapQueue::Count() const noexcept {
  const CriticalSectionLock lock(m_lock);
  return m_count;
}

TrapTable::~TrapTable() {
  for (TRAP_ENTRY* entry = nullptr; m_traps.TakeFirst(entry);) delete entry;
}

TRAP_ENTRY* TrapTable::Register(std::uint32_t specificTrap, const char* name) {
  static_cast<void>(m_event.Ensure());
  if (Find(name) != nullptr) return nullptr;
  std::unique_ptr<TRAP_ENTRY> entry(new TRAP_ENTRY{specificTrap, name});
  const UINT number[] = {specificTrap};
  const std::string dotted = DottedText(m_prefix, Lend(number));
  if (!m_traps.Insert(name, entry.get())) return nullptr;
  LogPrinter::Instance().Info("TRAP TABLE '%s' = %s\n", name, dotted.c_str());
  return entry.release();
}

TRAP_ENTRY* TrapTable::Find(const char* name) const {
  TRAP_ENTRY* const* const entry = m_traps.FindValue(name);
  return entry != nullptr ? *entry : nullptr;
}

bool TrapTable::Queue(const char* name) {
  const TRAP_ENTRY* const entry = Find(name);
  if (entry == nullptr) return false;
  m_queue.PurgeSent();
  LogPrinter::Instance().Info("SNMPExtensionAgent: Added trap '%s' to transmit queue..\n",
                              entry->m_name.c_str());
  if (m_queue.Append(entry->m_specificTrap, entry->m_name)) m_event.Set();
  return true;
}

}  // namespace Agent
