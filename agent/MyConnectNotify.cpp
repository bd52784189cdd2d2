#include "agent/MyConnectNotify.h"

#include "Src/LogPrinter.h"
#include "Src/TimerService.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/Traps.h"
#include "agent/Variables.h"
#include "messages/Registrar.h"

namespace Agent {

using Vask::LogPrinter;

void MyConnectNotify::ChangeState(LinkState state) {
  if (m_linkState.load(std::memory_order_relaxed) == state) return;
  if (state == kConnected) {
    TakeUpConnection();
  } else {
    TakeLoss();
  }
}

// Without its timer a connection would never request an update, so it does not
// count: the exception ends it, and the link connects again.
void MyConnectNotify::TakeUpConnection() {
  m_agent.Variables().SetInt(VariableName("LinkStatus"), kConnected);
  try {
    StartRequests();
  } catch (...) {
    m_agent.Variables().SetInt(VariableName("LinkStatus"), kLost);
    throw;
  }
  m_firstConnection = false;
}

// The timer and the state change together under the timer service's lock. A
// tick that is about to stop the requests of an earlier connection sees either
// both changes or none, so it cannot stop the requests of this connection.
void MyConnectNotify::StartRequests() {
  LogPrinter::Instance().Info("Connection to Corvane process established..\n");
  m_timers.ReplaceTimerAnd(
      m_firstConnection ? kFirstRequestMs : kRequestAgainMs, this,
      [](void* self) {
        static_cast<MyConnectNotify*>(self)->m_linkState.store(kConnected,
                                                               std::memory_order_relaxed);
      },
      this);
}

void MyConnectNotify::TakeLoss() {
  m_agent.Variables().SetInt(VariableName("LinkStatus"), kLost);
  if (!m_agent.Terminating()) {
    LogPrinter::Instance().Warning("Lost connection to Corvane process!\n");
    m_agent.Traps().Queue(TrapName("TrapSoftwareLinkDown"));
    m_updated.store(false, std::memory_order_relaxed);
  }
  m_linkState.store(kLost, std::memory_order_relaxed);
}

bool MyConnectNotify::RequestsAreOver() const noexcept {
  return m_linkState.load(std::memory_order_relaxed) == kConnected &&
         m_updated.load(std::memory_order_relaxed);
}

void MyConnectNotify::OnTimer(std::uint32_t, std::uint64_t) {
  if (m_linkState.load(std::memory_order_relaxed) != kConnected) return;
  if (!m_updated.load(std::memory_order_relaxed)) {
    LogPrinter::Instance().Info("Requesting to update SNMP variables..\n");
    m_registrar.SendSNMPupdate();
    return;
  }
  m_timers.KillTimerIf(
      this, [](void* self) { return static_cast<MyConnectNotify*>(self)->RequestsAreOver(); },
      this);
}

}  // namespace Agent
