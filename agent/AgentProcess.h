#pragma once

#include <cstdint>

#include "Src/ErrReporter.h"
#include "Src/SingletonRef.h"
#include "agent/EntryPoints.h"
#include "agent/MyConnectNotify.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/VariableUpdates.h"
#include "net/JsonSocket.h"

namespace Messages {
class Registrar;
struct SNMPupdateFinished;
}  // namespace Messages
namespace Vask {
class DailyLog;
class TimerService;
}  // namespace Vask
namespace Vask::Platform {
class Files;
}

namespace Agent {

// The parts of the machine that the agent uses.
struct Machine {
  Vask::Platform::Clock& clock;
  Vask::Platform::Files& files;
  Vask::Platform::Sockets& sockets;
  Vask::Platform::Threading& threading;
};

// Why the agent stops.
enum class Ending {
  kUnload,      // The module is unloaded and the process continues. The threads end first.
  kProcessEnd,  // The process ends. The agent waits for nothing, because Windows
                // has killed its threads already.
};

// The whole agent: its parts, wired to each other here and nowhere else, and
// their start and stop.
//
// The module builds its agent when the service first calls an entry point. The
// module hook destroys it at an unload, after both threads have ended. A test
// builds its own on a machine of its choice. Only one agent may exist at a
// time, because there is one registrar and its handlers have no context.
//
// Threads: Start runs on the thread that calls the entry point, and Stop on the
// thread that unloads the module, possibly under the loader's lock; never both
// at once.
class AgentProcess : public Vask::Thread::SingletonRef<AgentProcess> {
 public:
  // Port of the link to the main process. There is no setting for it.
  static constexpr std::uint16_t kLinkPort = 16969;

  // Under the system's folder for data that all users share, and the log's
  // folder under that.
  static constexpr char kProductFolder[] = "\\Veltrin Systems\\Corvane\\SNMP";
  static constexpr char kLogsFolder[] = "\\Logs";

  // The module's agent: on the system's own machine, with the log and the timer
  // service of the process.
  AgentProcess();
  // Log and timer service run on the same machine. Everything is lent and must
  // outlive this object.
  AgentProcess(const Machine& machine, Vask::DailyLog& log, Vask::TimerService& timers);
  // Stops both threads and unwires the registrar.
  ~AgentProcess();
  AgentProcess(const AgentProcess&) = delete;
  AgentProcess& operator=(const AgentProcess&) = delete;

  // Opens the log, starts the timer service, registers variables and traps and
  // opens the link. Returns false at the first failure; what was done before it
  // stays. A main process that cannot be reached is no failure: the link keeps
  // trying.
  //
  // A second start while the link runs returns false and leaves the running
  // agent alone: it registers nothing twice and does not touch the link.
  [[nodiscard]] bool Start();

  // Ends the connection in an orderly way. Before an unload it also ends both
  // threads, and returns when they have ended, after a few tenths of a second at
  // most. Works without a start, too.
  void Stop(Ending ending);

  [[nodiscard]] EntryPoints& Entries() noexcept { return m_entryPoints; }

  // The parts, for tests that play one of them or look inside.
  [[nodiscard]] SNMPExtensionAgent& Extension() noexcept { return m_agent; }
  [[nodiscard]] MyConnectNotify& ConnectNotify() noexcept { return m_connectNotify; }
  [[nodiscard]] VariableUpdates& Updates() noexcept { return m_updates; }
  [[nodiscard]] Vask::JsonSocket& Link() noexcept { return m_link; }

 private:
  static void HandleMessage(const Messages::SNMPmessage& message, std::int32_t id, void* context);
  static void HandleUpdateFinished(const Messages::SNMPupdateFinished& message, std::int32_t id,
                                   void* context);

  [[nodiscard]] bool OpenLog();
  [[nodiscard]] bool OpenLink();
  void WireLink();
  void LoadSocketLibraries();

  // The agent that the registrar's handlers belong to. Written while no thread
  // of the agent runs.
  static AgentProcess* s_current;

  Vask::Platform::Files& m_files;
  Vask::Platform::Sockets& m_sockets;
  Vask::DailyLog& m_log;
  Vask::TimerService& m_timers;
  Messages::Registrar& m_registrar;
  Vask::ErrReporter m_errors;
  SNMPExtensionAgent m_agent;
  MyConnectNotify m_connectNotify;
  VariableUpdates m_updates;
  Vask::JsonSocket m_link;
  EntryPoints m_entryPoints;
};

}  // namespace Agent
