#include "agent/AgentProcess.h"

#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Sockets.h"
#include "platform/Threading.h"

namespace Agent {

AgentProcess::AgentProcess()
    : m_log(Vask::DailyLog::Instance()),
      m_timers(Vask::TimerService::Instance()),
      m_registrar(Messages::Registrar::Instance()),
      m_agent(Vask::Platform::SystemClock(), Vask::Platform::SystemThreading()),
      m_connectNotify(m_agent, m_timers, m_registrar),
      m_updates(m_agent, m_connectNotify, m_registrar),
      m_link(&m_connectNotify),
      m_lifecycle({m_agent, m_connectNotify, m_link, m_timers, m_log, m_errors, m_registrar,
                   Vask::Platform::SystemFiles(), Vask::Platform::SystemSockets(), &HandleMessage,
                   &HandleUpdateFinished}),
      m_entryPoints(m_agent, m_lifecycle) {}

// The registrar gives handlers no context: it keeps one handler per function.
void AgentProcess::HandleMessage(const Messages::SNMPmessage& message, std::int32_t, void*) {
  Instance().m_updates.OnMessage(message);
}

void AgentProcess::HandleUpdateFinished(const Messages::SNMPupdateFinished&, std::int32_t, void*) {
  Instance().m_updates.OnUpdateFinished();
}

}  // namespace Agent
