#include "agent/MibTable.h"

#include <algorithm>
#include <cstring>

#include "Src/LogPrinter.h"
#include "agent/SharedText.h"

namespace Agent {

using Vask::Platform::CriticalSectionLock;

// Every registered variable has its place in the list.
MibTable::~MibTable() {
  for (const OrderedEntries::Node* node = m_ordered.Head(); node != nullptr; node = node->m_next)
    delete node->m_entry;
}

MIB_ENTRY* MibTable::RegisterInt(const AsnObjectIdentifier& suffix, const char* name,
                                 MIB_ENTRY* next, std::int32_t initial) {
  auto entry = std::make_unique<MIB_ENTRY>(suffix, kTypeInt, name);
  if (!entry->HoldNumber(initial)) return nullptr;
  return Register(std::move(entry), next);
}

MIB_ENTRY* MibTable::RegisterString(const AsnObjectIdentifier& suffix, const char* name,
                                    MIB_ENTRY* next, std::uint32_t capacity, const char* initial) {
  auto entry = std::make_unique<MIB_ENTRY>(suffix, kTypeString, name);
  if (!entry->HoldText(capacity, initial)) return nullptr;
  return Register(std::move(entry), next);
}

MIB_ENTRY* MibTable::RegisterSequence(const AsnObjectIdentifier& suffix, const char* name,
                                      MIB_ENTRY* next) {
  return Register(std::make_unique<MIB_ENTRY>(suffix, kTypeSequence, name), next);
}

// What needs memory is done first: once the dictionary knows the variable,
// nothing can fail any more.
MIB_ENTRY* MibTable::Register(std::unique_ptr<MIB_ENTRY> entry, MIB_ENTRY* next) {
  if (Find(entry->m_name.c_str()) != nullptr) return nullptr;
  std::unique_ptr<OrderedEntries::Node> node(OrderedEntries::MakeNode(m_prefix, *entry));
  if (node == nullptr) return nullptr;
  const std::string dotted = DottedText(m_prefix, entry->m_oid);
  if (!m_entries.Insert(entry->m_name.c_str(), entry.get())) return nullptr;
  entry->m_next = next;
  Vask::LogPrinter::Instance().Info("MIB TABLE '%s':%s = %s\n", entry->m_name.c_str(),
                                    TypeWord(entry->m_type), dotted.c_str());
  m_ordered.Insert(node.release());
  return entry.release();
}

MIB_ENTRY* MibTable::Find(const char* name) const {
  MIB_ENTRY* const* const entry = m_entries.FindValue(name);
  return entry != nullptr ? *entry : nullptr;
}

bool MibTable::SetInt(const char* name, std::int32_t value) {
  const MIB_ENTRY* entry = Find(name);
  if (entry == nullptr || entry->m_type != kTypeInt) return false;
  entry->m_number->store(value, std::memory_order_relaxed);
  return true;
}

bool MibTable::SetString(const char* name, const char* text) {
  const MIB_ENTRY* entry = Find(name);
  if (entry == nullptr || entry->m_type != kTypeString) return false;
  WriteShared(entry->m_text, text, std::min<std::size_t>(std::strlen(text) + 1, entry->m_capacity));
  return true;
}

void MibTable::AddRow(MIB_ENTRY& entry, const char* first, const char* second) {
  const CriticalSectionLock lock(entry.m_lock);
  entry.m_rows.push_back({first, second});
}

bool MibTable::SetRow(MIB_ENTRY& entry, UINT row, const char* first, const char* second) {
  const CriticalSectionLock lock(entry.m_lock);
  if (row < 1 || row > entry.m_rows.size()) return false;
  entry.m_rows[row - 1] = {first, second};
  return true;
}

void MibTable::ClearRows(MIB_ENTRY& entry) {
  const CriticalSectionLock lock(entry.m_lock);
  entry.m_rows.clear();
}

UINT MibTable::RowCount(MIB_ENTRY& entry) {
  const CriticalSectionLock lock(entry.m_lock);
  return static_cast<UINT>(entry.m_rows.size());
}

}  // namespace Agent
