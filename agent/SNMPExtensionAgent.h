#pragma once

#include <atomic>
#include <cstdint>

#include "agent/EnterprisePrefix.h"
#include "agent/MibTable.h"
#include "agent/TrapTable.h"
#include "platform/Clock.h"
#include "platform/Threading.h"

namespace Agent {

// What the SNMP service talks to behind the entry points: the variables, the
// answers to Get and GetNext, and the traps. The agent of the process is one of
// them; tests make their own.
//
// Threads: the variables and traps are registered on one thread before anybody
// else uses the object. Afterwards everything may be called from any thread.
class SNMPExtensionAgent {
 public:
  // The seams outlive the object.
  SNMPExtensionAgent(Vask::Platform::Clock& clock, Vask::Platform::Threading& threading,
                     MibTable::AllocateText allocate = &SnmpUtilMemAlloc)
      : m_clock(clock),
        m_variables(m_prefix.Name(), allocate),
        m_traps(m_prefix.Name(), threading) {}

  [[nodiscard]] MibTable& Variables() noexcept { return m_variables; }
  [[nodiscard]] TrapTable& Traps() noexcept { return m_traps; }

  // The name that everything lies under; refers to this object's own array.
  [[nodiscard]] AsnObjectIdentifier Prefix() noexcept { return m_prefix.Name(); }

  // Both answer one binding of a request: they put the value into it and answer
  // an SNMP error status (0, 2 or 5). A text answered is the caller's to free.
  //
  // GetRequest answers the first variable whose full name is a leading part of
  // the binding's name.
  [[nodiscard]] INT GetRequest(SnmpVarBind& binding) const;

  // GetNextRequest answers what follows the binding's name and replaces the
  // name, which must be in the utility functions' memory, with the one that it
  // answers. A name that was replaced by a step that then fails stays replaced.
  //
  // Behind the last cell of a SEQUENCE the walk goes on at the variable that
  // the SEQUENCE names as its next, as if that variable had been asked for. A
  // following INT or STRING is therefore passed over, and the one after it
  // answered; a following SEQUENCE is entered at its first cell.
  [[nodiscard]] INT GetNextRequest(SnmpVarBind& binding) const;

  // From here on a trap's time stamp counts.
  void RecordStart() noexcept { m_startTick.store(m_clock.TickMs(), std::memory_order_relaxed); }

  // Hands the next waiting trap to the service, without bindings; false, and
  // nothing written, when none waits. The time stamp is in milliseconds since
  // RecordStart, not in hundredths of a second: managers of this agent have
  // always got it so. `enterprise` refers to this object's own array.
  [[nodiscard]] bool TakeTrap(AsnObjectIdentifier& enterprise, AsnInteger& genericTrap,
                              AsnInteger& specificTrap, std::uint32_t& timeStampMs,
                              SnmpVarBindList& bindings);

  // Set once, when the agent begins to stop: a link that is lost from then on
  // is neither logged nor trapped.
  void SetTerminating() noexcept { m_terminating.store(true, std::memory_order_relaxed); }
  [[nodiscard]] bool Terminating() const noexcept {
    return m_terminating.load(std::memory_order_relaxed);
  }

 private:
  EnterprisePrefix m_prefix;
  Vask::Platform::Clock& m_clock;
  MibTable m_variables;
  TrapTable m_traps;
  std::atomic<std::uint32_t> m_startTick{0};
  std::atomic<bool> m_terminating{false};
};

}  // namespace Agent
