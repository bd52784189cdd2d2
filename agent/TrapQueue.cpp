#include "agent/TrapQueue.h"

#include <new>
#include <utility>

namespace Agent {

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

}  // namespace Agent
