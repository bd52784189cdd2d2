#include <cstring>

#include "Src/LogPrinter.h"
#include "agent/MibTable.h"
#include "agent/SequenceCell.h"
#include "agent/SharedText.h"

namespace Agent {

using Vask::LogPrinter;
using Vask::Platform::CriticalSectionLock;

namespace {

// Hands a text over to the receiver, who frees it. The zero behind it is ours
// to add: the cell that it came from may have none.
void AnswerText(AsnAny& value, char* text, UINT length) {
  text[length] = '\0';
  value.asnType = ASN_OCTETSTRING;
  value.asnValue.string.stream = reinterpret_cast<BYTE*>(text);
  value.asnValue.string.length = length;
  value.asnValue.string.dynamic = TRUE;
}

}  // namespace

INT MibTable::GetStoredVar(MIB_ENTRY& entry, const AsnObjectIdentifier& request,
                           AsnAny& value) const {
  switch (entry.m_type) {
    case kTypeInt:
      return AnswerInt(entry, value);
    case kTypeString:
      return AnswerString(entry, value);
    case kTypeSequence:
      return AnswerCell(entry, request, value);
    default:
      LogPrinter::Instance().Info("GetStoredVar(%s) = ERROR\n", entry.m_name.c_str());
      return SNMP_ERRORSTATUS_GENERR;
  }
}

INT MibTable::AnswerInt(const MIB_ENTRY& entry, AsnAny& value) const {
  const std::int32_t number = entry.m_number->load(std::memory_order_relaxed);
  value.asnType = ASN_INTEGER;
  value.asnValue.number = number;
  LogPrinter::Instance().Info("GetStoredVar(%s) = INT: %d\n", entry.m_name.c_str(), number);
  return SNMP_ERRORSTATUS_NOERROR;
}

INT MibTable::AnswerString(const MIB_ENTRY& entry, AsnAny& value) const {
  const UINT length = MeasureShared(entry.m_text, entry.m_capacity);
  auto* const text = static_cast<char*>(m_allocate(length + 1));
  if (text == nullptr) return SNMP_ERRORSTATUS_GENERR;
  ReadShared(entry.m_text, text, length);
  AnswerText(value, text, length);
  LogPrinter::Instance().Info("GetStoredVar(%s) = STRING[%d]: '%s'\n", entry.m_name.c_str(),
                              static_cast<int>(length), text);
  return SNMP_ERRORSTATUS_NOERROR;
}

INT MibTable::AnswerCell(MIB_ENTRY& entry, const AsnObjectIdentifier& request,
                         AsnAny& value) const {
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
  AnswerText(value, text, length);
  LogPrinter::Instance().Info("GetStoredVar(%s) = SEQUENCE[%d]: '%s'\n", entry.m_name.c_str(),
                              static_cast<int>(length), text);
  return SNMP_ERRORSTATUS_NOERROR;
}

}  // namespace Agent
