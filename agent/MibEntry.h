#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/CriticalSection.h"
#include "platform/Snmp.h"

namespace Agent {

inline constexpr BYTE kTypeInt = ASN_INTEGER;
inline constexpr BYTE kTypeString = ASN_OCTETSTRING;
inline constexpr BYTE kTypeSequence = ASN_SEQUENCE;

// The word for a type in the table's dump.
[[nodiscard]] const char* TypeWord(BYTE type) noexcept;

// One variable of the agent: its place under the enterprise prefix, its type
// and its value. Everything but the value and the rows stands still once the
// variable is registered.
//
// Threads: the number and the text may be written by one thread while others
// read them (see SharedText.h for the text). The rows are guarded by the
// variable's own lock.
struct MIB_ENTRY {
  struct Row {
    std::string m_first;   // column 1
    std::string m_second;  // column 2
  };

  MIB_ENTRY(const AsnObjectIdentifier& suffix, BYTE type, const char* name);
  ~MIB_ENTRY();
  MIB_ENTRY(const MIB_ENTRY&) = delete;
  MIB_ENTRY& operator=(const MIB_ENTRY&) = delete;

  // Make the value, once; false when there is no memory for it. A text longer
  // than the capacity is cut; the rest of a shorter one's cell is zero.
  [[nodiscard]] bool HoldNumber(std::int32_t initial) noexcept;
  [[nodiscard]] bool HoldText(std::uint32_t capacity, const char* initial) noexcept;

  AsnObjectIdentifier m_oid;  // the suffix; refers to a constant array
  BYTE m_type;
  union {
    std::atomic<std::int32_t>* m_number;  // INT: owned
    char* m_text;                         // STRING: owned, m_capacity bytes
  };
  std::uint32_t m_capacity = 0;  // STRING only, the terminating zero included
  MIB_ENTRY* m_next = nullptr;   // who follows in the walk, as given at registration
  std::string m_name;
  Vask::Platform::CriticalSection m_lock{Vask::Platform::LockRank::SequenceRows};
  std::vector<Row> m_rows VASK_GUARDED_BY(m_lock);  // SEQUENCE only
};

}  // namespace Agent
