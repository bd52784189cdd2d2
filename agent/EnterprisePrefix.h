#pragma once

#include "BuildSettings.h"
#include "platform/Snmp.h"

namespace Agent {

// Every variable and every trap of the agent lies under this one name,
// 1.3.6.1.4.1.E.333. E is the private enterprise number of whoever deploys the
// agent, one setting of the build.
//
// The object is the owner of the eight sub-identifiers that callers of the
// entry points get to see: Name() points into it, so it must live for as long
// as anybody may hold what it answered. Any thread may read.
class EnterprisePrefix {
 public:
  static constexpr UINT kLength = 8;

  // Refers to this object's own array. The receiver neither frees nor writes
  // it; the contract's types have no const to say so.
  [[nodiscard]] AsnObjectIdentifier Name() noexcept { return {kLength, m_ids}; }

 private:
  UINT m_ids[kLength] = {1, 3, 6, 1, 4, 1, CORVANE_ENTERPRISE, 333};
};

}  // namespace Agent
