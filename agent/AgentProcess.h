#pragma once

#include "Src/DailyLog.h"
#include "Src/ErrReporter.h"
#include "Src/SingletonRef.h"
#include "Src/TimerService.h"
#include "agent/EntryPoints.h"
#include "agent/Lifecycle.h"
#include "agent/MyConnectNotify.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/VariableUpdates.h"
#include "messages/Registrar.h"
#include "net/JsonSocket.h"

namespace Agent {

// The one agent of the process, put together: which part knows which. Parts
// that are process-wide by themselves (printer, log, timer service, registrar)
// are asked for first and so outlive this object.
//
// Built by whichever entry point is called first, destroyed when the module is
// unloaded, after both threads have ended.
class AgentProcess : public Vask::Thread::SingletonRef<AgentProcess> {
 public:
  AgentProcess();

  [[nodiscard]] EntryPoints& Entries() noexcept { return m_entryPoints; }

  // See Lifecycle::Stop. For the module hook.
  void Stop(Ending ending) { m_lifecycle.Stop(ending); }

 private:
  static void HandleMessage(const Messages::SNMPmessage& message, std::int32_t id, void* context);
  static void HandleUpdateFinished(const Messages::SNMPupdateFinished& message, std::int32_t id,
                                   void* context);

  Vask::DailyLog& m_log;
  Vask::TimerService& m_timers;
  Messages::Registrar& m_registrar;
  Vask::ErrReporter m_errors;
  SNMPExtensionAgent m_agent;
  MyConnectNotify m_connectNotify;
  VariableUpdates m_updates;
  Vask::JsonSocket m_link;
  Lifecycle m_lifecycle;
  EntryPoints m_entryPoints;
};

}  // namespace Agent
