#include "agent/TrapTable.h"

#include <memory>

#include "Src/LogPrinter.h"
#include "agent/ObjectIdentifier.h"

namespace Agent {

using Vask::LogPrinter;

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
