#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/CriticalSection.h"
#include "platform/Snmp.h"

namespace Agent {

inline constexpr BYTE kTypeInt = ASN_INTEGER;
inline constexpr BYTE kTypeString = ASN_OCTETSTRING;
inline constexpr BYTE kTypeSequence = ASN_SEQUENCE;

// The word for a type in the dump of the table.
[[nodiscard]] const char* TypeWord(BYTE type) noexcept;

// One variable of the agent: its place under the enterprise prefix, its type and
// its value. After the registration only the value and the rows change.
//
// Threads: one thread may write the number and the text while others read them;
// see below for the text. The variable's own lock guards the rows.
struct MIB_ENTRY {
  struct Row {
    std::string m_first;   // column 1
    std::string m_second;  // column 2
  };

  MIB_ENTRY(const AsnObjectIdentifier& suffix, BYTE type, const char* name);
  ~MIB_ENTRY();
  MIB_ENTRY(const MIB_ENTRY&) = delete;
  MIB_ENTRY& operator=(const MIB_ENTRY&) = delete;

  // Make the value, once. They return false if there is no memory for it. A text
  // longer than the capacity is cut; behind a shorter one the cell is zero.
  [[nodiscard]] bool HoldNumber(std::int32_t initial) noexcept;
  [[nodiscard]] bool HoldText(std::uint32_t capacity, const char* initial) noexcept;

  AsnObjectIdentifier m_oid;  // the suffix; refers to a constant array
  BYTE m_type;
  union {
    std::atomic<std::int32_t>* m_number;  // INT: owned
    char* m_text;                         // STRING: owned, m_capacity bytes
  };
  std::uint32_t m_capacity = 0;  // STRING only, with the terminating zero
  MIB_ENTRY* m_next = nullptr;   // the next variable of a walk, as given at registration
  std::string m_name;
  Vask::Platform::CriticalSection m_lock{Vask::Platform::LockRank::SequenceRows};
  std::vector<Row> m_rows VASK_GUARDED_BY(m_lock);  // SEQUENCE only
};

// A text cell has one writer and many readers, and no lock: a reader may see a
// mixture of the old and the new text. The functions access every byte as a
// relaxed atomic, and no byte outside the cell, so nothing worse can happen. A
// text that fills the cell has no zero behind it.

// Writes `length` bytes of `text` into the cell.
void WriteShared(char* cell, const char* text, std::size_t length) noexcept;
// The number of bytes before the cell's first zero, at most `capacity`.
[[nodiscard]] std::uint32_t MeasureShared(char* cell, std::uint32_t capacity) noexcept;
// Copies `length` bytes of the cell into `text`.
void ReadShared(char* cell, char* text, std::size_t length) noexcept;

// The three trailing sub-identifiers that name one cell of a SEQUENCE variable:
// entry (always 1), column, row. A new object names the first cell. Each request
// has its own object, so requests cannot disturb each other.
class SequenceCell {
 public:
  static constexpr UINT kLength = 3;
  static constexpr UINT kColumns = 2;

  // The cell that `name` holds from sub-identifier `at` on. A sub-identifier that
  // is missing counts as 1.
  [[nodiscard]] static SequenceCell Of(const AsnObjectIdentifier& name, UINT at) noexcept {
    SequenceCell cell;
    for (UINT i = 0; i < kLength; ++i)
      if (at + i < name.idLength) cell.m_ids[i] = name.ids[at + i];
    return cell;
  }

  [[nodiscard]] UINT Entry() const noexcept { return m_ids[0]; }
  [[nodiscard]] UINT Column() const noexcept { return m_ids[1]; }
  [[nodiscard]] UINT Row() const noexcept { return m_ids[2]; }

  // Both count modulo 2^32, as sub-identifiers do.
  void NextRow() noexcept { ++m_ids[2]; }
  void NextColumn() noexcept {
    ++m_ids[1];
    m_ids[2] = 1;
  }

  // Refers to this object.
  [[nodiscard]] AsnObjectIdentifier Name() noexcept { return {kLength, m_ids}; }

 private:
  UINT m_ids[kLength] = {1, 1, 1};
};

}  // namespace Agent
