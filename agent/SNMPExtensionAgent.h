#pragma once

#include <atomic>
#include <cstdint>

#include "agent/MibTable.h"
#include "agent/ObjectIdentifier.h"
#include "agent/TrapTable.h"
#include "platform/Clock.h"
#include "platform/Threading.h"

namespace Agent {

// The variables, the results of Get and GetNext, and the traps: what the entry
// points pass the requests of the SNMP service to.
//
// Threads: one thread registers the variables and traps, before any other uses
// the object. Afterwards any thread may call everything else.
class SNMPExtensionAgent {
 public:
  // Clock and threading outlive the object.
  SNMPExtensionAgent(Vask::Platform::Clock& clock, Vask::Platform::Threading& threading,
                     MibTable::AllocateText allocate = &SnmpUtilMemAlloc)
      : m_clock(clock),
        m_variables(m_prefix.Name(), allocate),
        m_traps(m_prefix.Name(), threading) {}

  [[nodiscard]] MibTable& Variables() noexcept { return m_variables; }
  [[nodiscard]] TrapTable& Traps() noexcept { return m_traps; }

  // The name that everything lies under; refers to this object's own array.
  [[nodiscard]] AsnObjectIdentifier Prefix() noexcept { return m_prefix.Name(); }

  // Registers the variables of Variables.h, from the last to the first, because each
  // registration takes the entry that follows. A variable that an earlier attempt has
  // registered stays. If there is no memory for a variable, the log reports this and the
  // table does not have the variable. The variable before it then has no next one.
  void RegisterVariables();
  // Registers the traps of Traps.h in their order. A trap that an earlier attempt
  // has registered stays.
  void RegisterTraps();

  // Both serve one binding of a request: they put the value into it and return an
  // SNMP error status (0, 2 or 5). The caller frees a returned text.
  //
  // GetRequest reads the first variable whose full name is a leading part of the
  // binding's name.
  [[nodiscard]] INT GetRequest(SnmpVarBind& binding) const;

  // GetNextRequest reads what follows the binding's name, and replaces that name
  // with the one that it has read. The name must be memory of the utility
  // functions. If a step replaces the name and then fails, the new name stays.
  //
  // Behind the last cell of a SEQUENCE the walk continues as if the manager had requested
  // the next variable of the SEQUENCE. If that is an INT or STRING, the walk therefore
  // skips it and reads the variable after it. If it is a SEQUENCE, the walk enters it at
  // the first cell.
  [[nodiscard]] INT GetNextRequest(SnmpVarBind& binding) const;

  // The time stamps of traps count from this call on.
  void RecordStart() noexcept { m_startTick.store(m_clock.TickMs(), std::memory_order_relaxed); }

  // Hands the next waiting trap to the service, without bindings. Returns false,
  // and writes nothing, if none waits. The time stamp counts milliseconds since
  // RecordStart, not hundredths of a second: managers of this agent rely on it.
  // `enterprise` refers to this object's own array.
  [[nodiscard]] bool TakeTrap(AsnObjectIdentifier& enterprise, AsnInteger& genericTrap,
                              AsnInteger& specificTrap, std::uint32_t& timeStampMs,
                              SnmpVarBindList& bindings);

  // Set once, when the agent begins to stop. From then on a lost link causes
  // neither a log line nor a trap.
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
