#include "agent/AgentProcess.h"

#include <cstring>

#include "Src/DailyLog.h"
#include "Src/LogPrinter.h"
#include "Src/TimerService.h"
#include "messages/Registrar.h"
#include "net/CFileName2.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Sockets.h"
#include "platform/Threading.h"

namespace Agent {

using Messages::SNMPmessage;
using Messages::SNMPupdateFinished;
using Vask::LogPrinter;

namespace {

constexpr char kOwnName[] = "SNMPd";

constexpr std::size_t kPathCapacity = Vask::CFileName2::kMaxLength + 1;

// Returns false if the whole path does not fit.
[[nodiscard]] bool AppendPath(char (&path)[kPathCapacity], const char* tail) noexcept {
  const std::size_t length = std::strlen(path);
  const std::size_t tailLength = std::strlen(tail);
  if (length + tailLength >= kPathCapacity) return false;
  std::memcpy(path + length, tail, tailLength + 1);
  return true;
}

}  // namespace

constinit AgentProcess* AgentProcess::s_current = nullptr;

// Log, timer service and registrar exist before the agent of the module does,
// so the module hook destroys them after it.
AgentProcess::AgentProcess()
    : AgentProcess({Vask::Platform::SystemClock(), Vask::Platform::SystemFiles(),
                    Vask::Platform::SystemSockets(), Vask::Platform::SystemThreading()},
                   Vask::DailyLog::Instance(), Vask::TimerService::Instance()) {}

AgentProcess::AgentProcess(const Machine& machine, Vask::DailyLog& log, Vask::TimerService& timers)
    : m_files(machine.files),
      m_sockets(machine.sockets),
      m_log(log),
      m_timers(timers),
      m_registrar(Messages::Registrar::Instance()),
      m_agent(machine.clock, machine.threading),
      m_connectNotify(m_agent, m_timers, m_registrar),
      m_updates(m_agent, m_connectNotify, m_registrar),
      m_link(nullptr, machine.clock, machine.sockets, machine.threading),
      m_entryPoints(m_agent, *this) {
  s_current = this;
}

AgentProcess::~AgentProcess() {
  m_link.StopThread();
  m_timers.StopService();
  m_registrar.Unsubscribe<SNMPmessage>(&HandleMessage);
  m_registrar.Unsubscribe<SNMPupdateFinished>(&HandleUpdateFinished);
  m_registrar.SetSender(nullptr);
  m_registrar.SetErrorSink(nullptr);
  s_current = nullptr;
}

void AgentProcess::HandleMessage(const SNMPmessage& message, std::int32_t, void*) {
  s_current->m_updates.OnMessage(message);
}

void AgentProcess::HandleUpdateFinished(const SNMPupdateFinished&, std::int32_t, void*) {
  s_current->m_updates.OnUpdateFinished();
}

bool AgentProcess::Start() {
  if (!OpenLog()) return false;
  LogPrinter::Instance().Info("Starting Corvane SNMP extension agent..\n");
  // Without timers the agent still serves the values that it has.
  static_cast<void>(m_timers.StartService());
  // A running link must not be touched, and must not meet a growing table.
  // OpenLink reports that it runs.
  if (!m_link.IsRunning()) {
    m_agent.RegisterVariables();
    m_agent.RegisterTraps();
    WireLink();
    LoadSocketLibraries();
  }
  return OpenLink();
}

// Logs no failure, because there is no log yet.
bool AgentProcess::OpenLog() {
  char path[kPathCapacity];
  if (!m_files.CommonApplicationData(path, sizeof path)) return false;
  for (const char* const folder : {kProductFolder, kLogsFolder}) {
    if (!AppendPath(path, folder)) return false;
    if (!Vask::CFileName2::CreateFolders(path, m_files)) return false;
  }
  if (!m_log.Open(path)) return false;
  LogPrinter::Instance().SetTarget(&m_log);
  return true;
}

bool AgentProcess::OpenLink() {
  if (m_link.OpenThread()) return true;
  LogPrinter::Instance().Error("Unable to open JsonSocket!\n");
  return false;
}

// Runs before the link's thread starts, so the first message finds its handlers.
void AgentProcess::WireLink() {
  m_registrar.SetErrorSink(&m_errors);
  m_registrar.SetSender(&m_link);
  m_registrar.SetFrom(kOwnName);
  m_registrar.Subscribe<SNMPmessage>(&HandleMessage);
  m_registrar.Subscribe<SNMPupdateFinished>(&HandleUpdateFinished);
  m_link.SetTextListener(&m_registrar);
  m_link.SetEvents(&m_connectNotify);
  m_link.SetErrorSink(&m_errors);
  m_link.SetPort(kLinkPort);
}

// The first socket of a process, and the first graceful disconnection, load
// libraries. If the link's thread did that during an unload, it would wait for
// the loader's lock for ever: the unload holds that lock and waits for the thread.
void AgentProcess::LoadSocketLibraries() {
  const Vask::Platform::SocketHandle socket = m_sockets.OpenTcp();
  if (socket == Vask::Platform::kInvalidSocket) return;
  static_cast<void>(m_sockets.Disconnect(socket));
  m_sockets.Close(socket);
}

void AgentProcess::Stop(Ending ending) {
  LogPrinter::Instance().Info("Terminating SNMP extension agent..\n");
  m_agent.SetTerminating();
  if (ending == Ending::kProcessEnd) {
    m_link.RequestStop();
    return;
  }
  m_link.StopThread();
  m_timers.StopService();
}

}  // namespace Agent
