#include "agent/MibTable.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "Src/LogPrinter.h"

namespace Agent {

using Vask::LogPrinter;
using Vask::Platform::CriticalSectionLock;

namespace {

// Hands a text over to the receiver, which frees it. Adds the terminating zero,
// because the text's cell may have none.
void HandOver(AsnAny& value, char* text, UINT length) {
  text[length] = '\0';
  value.asnType = ASN_OCTETSTRING;
  value.asnValue.string.stream = reinterpret_cast<BYTE*>(text);
  value.asnValue.string.length = length;
  value.asnValue.string.dynamic = TRUE;
}

}  // namespace

OrderedEntries::~OrderedEntries() {
  while (m_head != nullptr) delete std::exchange(m_head, m_head->m_next);
}

OrderedEntries::Node* OrderedEntries::MakeNode(const AsnObjectIdentifier& prefix,
                                               MIB_ENTRY& entry) {
  std::unique_ptr<Node> node(new (std::nothrow) Node);
  if (node == nullptr || !node->m_fullName.Join({prefix, entry.m_oid})) return nullptr;
  node->m_entry = &entry;
  return node.release();
}

void OrderedEntries::Insert(Node* node) noexcept {
  Node** place = &m_head;
  while (*place != nullptr &&
         CompareWhole((*place)->m_fullName.Name(), node->m_fullName.Name()) < 0)
    place = &(*place)->m_next;
  node->m_next = *place;
  *place = node;
}

// Every registered variable has its node in the list.
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

// Allocates first: when the dictionary knows the variable, nothing can fail any
// more.
MIB_ENTRY* MibTable::Register(std::unique_ptr<MIB_ENTRY> entry, MIB_ENTRY* next) {
  if (Find(entry->m_name.c_str()) != nullptr) return nullptr;
  std::unique_ptr<OrderedEntries::Node> node(OrderedEntries::MakeNode(m_prefix, *entry));
  if (node == nullptr) return nullptr;
  const std::string dotted = DottedText(m_prefix, entry->m_oid);
  if (!m_entries.Insert(entry->m_name.c_str(), entry.get())) return nullptr;
  entry->m_next = next;
  LogPrinter::Instance().Info("MIB TABLE '%s':%s = %s\n", entry->m_name.c_str(),
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

INT MibTable::GetStoredVar(MIB_ENTRY& entry, const AsnObjectIdentifier& request,
                           AsnAny& value) const {
  switch (entry.m_type) {
    case kTypeInt:
      return ReadInt(entry, value);
    case kTypeString:
      return ReadString(entry, value);
    case kTypeSequence:
      return ReadCell(entry, request, value);
    default:
      LogPrinter::Instance().Info("GetStoredVar(%s) = ERROR\n", entry.m_name.c_str());
      return SNMP_ERRORSTATUS_GENERR;
  }
}

INT MibTable::ReadInt(const MIB_ENTRY& entry, AsnAny& value) {
  const std::int32_t number = entry.m_number->load(std::memory_order_relaxed);
  value.asnType = ASN_INTEGER;
  value.asnValue.number = number;
  LogPrinter::Instance().Info("GetStoredVar(%s) = INT: %d\n", entry.m_name.c_str(), number);
  return SNMP_ERRORSTATUS_NOERROR;
}

INT MibTable::ReadString(const MIB_ENTRY& entry, AsnAny& value) const {
  const UINT length = MeasureShared(entry.m_text, entry.m_capacity);
  auto* const text = static_cast<char*>(m_allocate(length + 1));
  if (text == nullptr) return SNMP_ERRORSTATUS_GENERR;
  ReadShared(entry.m_text, text, length);
  HandOver(value, text, length);
  LogPrinter::Instance().Info("GetStoredVar(%s) = STRING[%d]: '%s'\n", entry.m_name.c_str(),
                              static_cast<int>(length), text);
  return SNMP_ERRORSTATUS_NOERROR;
}

INT MibTable::ReadCell(MIB_ENTRY& entry, const AsnObjectIdentifier& request, AsnAny& value) const {
  const UINT cellAt = m_prefix.idLength + entry.m_oid.idLength;
  if (request.idLength != cellAt + SequenceCell::kLength) return SNMP_ERRORSTATUS_NOSUCHNAME;
  const SequenceCell cell = SequenceCell::Of(request, cellAt);
  char* text = nullptr;
  UINT length = 0;
  {
    const CriticalSectionLock lock(entry.m_lock);
    if (cell.Row() < 1 || cell.Row() > entry.m_rows.size()) return SNMP_ERRORSTATUS_NOSUCHNAME;
    if (cell.Column() < 1 || cell.Column() > 2) return SNMP_ERRORSTATUS_NOSUCHNAME;
    const MIB_ENTRY::Row& row = entry.m_rows[cell.Row() - 1];
    const std::string& found = cell.Column() == 1 ? row.m_first : row.m_second;
    length = static_cast<UINT>(found.size());
    text = static_cast<char*>(m_allocate(length + 1));
    if (text == nullptr) return SNMP_ERRORSTATUS_GENERR;
    std::memcpy(text, found.data(), length);
  }
  HandOver(value, text, length);
  LogPrinter::Instance().Info("GetStoredVar(%s) = SEQUENCE[%d]: '%s'\n", entry.m_name.c_str(),
                              static_cast<int>(length), text);
  return SNMP_ERRORSTATUS_NOERROR;
}

}  // namespace Agent
