#pragma once

#include "platform/Snmp.h"

namespace Agent {

// The three trailing sub-identifiers that name one cell of a SEQUENCE variable:
// entry (always 1), column, row. A fresh one names the first cell. Each request
// works on its own, so requests cannot disturb each other.
class SequenceCell {
 public:
  static constexpr UINT kLength = 3;
  static constexpr UINT kColumns = 2;

  // The cell that stands in `name` from sub-identifier `at` on; what is missing
  // there counts as 1.
  [[nodiscard]] static SequenceCell Of(const AsnObjectIdentifier& name, UINT at) noexcept {
    SequenceCell cell;
    for (UINT i = 0; i < kLength; ++i)
      if (at + i < name.idLength) cell.m_ids[i] = name.ids[at + i];
    return cell;
  }

  [[nodiscard]] UINT Entry() const noexcept { return m_ids[0]; }
  [[nodiscard]] UINT Column() const noexcept { return m_ids[1]; }
  [[nodiscard]] UINT Row() const noexcept { return m_ids[2]; }

  // Steps are made modulo 2^32, as sub-identifiers are.
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
