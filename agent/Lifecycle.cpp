#include "agent/Lifecycle.h"

#include <cstring>

#include "Src/DailyLog.h"
#include "Src/ErrReporter.h"
#include "Src/LogPrinter.h"
#include "Src/TimerService.h"
#include "agent/MyConnectNotify.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/Traps.h"
#include "agent/Variables.h"
#include "net/CFileName2.h"
#include "net/JsonSocket.h"
#include "platform/Files.h"
#include "platform/Sockets.h"

namespace Agent {

using Vask::LogPrinter;

namespace {

constexpr char kOwnName[] = "SNMPd";

// The longest path that the log takes.
constexpr std::size_t kPathCapacity = 261;

// False when the whole does not fit.
[[nodiscard]] bool AppendPath(char (&path)[kPathCapacity], const char* tail) noexcept {
  const std::size_t length = std::strlen(path);
  const std::size_t tailLength = std::strlen(tail);
  if (length + tailLength >= kPathCapacity) return false;
  std::memcpy(path + length, tail, tailLength + 1);
  return true;
}

}  // namespace

bool Lifecycle::Start() {
  if (!OpenLog()) return false;
  LogPrinter::Instance().Info("Starting Corvane SNMP extension agent..\n");
  // Without timers the agent still serves what it has.
  static_cast<void>(m_parts.timers.StartService());
  // A link that runs already must not be touched, nor meet a growing table; but
  // it does say that it runs.
  if (!m_parts.link.IsRunning()) {
    RegisterVariables(m_parts.agent.Variables());
    RegisterTraps(m_parts.agent.Traps());
    WireLink();
    LoadSocketLibraries();
  }
  return OpenLink();
}

// Nothing is logged when this fails: there is nowhere to log to.
bool Lifecycle::OpenLog() {
  char path[kPathCapacity];
  Vask::Platform::Files& files = m_parts.files;
  if (!files.CommonApplicationData(path, sizeof path)) return false;
  for (const char* const folder : {kProductFolder, kLogsFolder}) {
    if (!AppendPath(path, folder)) return false;
    if (!Vask::CFileName2::CreateFolders(path, files)) return false;
  }
  if (!m_parts.log.Open(path)) return false;
  LogPrinter::Instance().SetTarget(&m_parts.log);
  return true;
}

bool Lifecycle::OpenLink() {
  if (m_parts.link.OpenThread()) return true;
  LogPrinter::Instance().Error("Unable to open JsonSocket!\n");
  return false;
}

// Everything stands before the link's thread does, so the first message finds
// its way.
void Lifecycle::WireLink() {
  m_parts.registrar.SetErrorSink(&m_parts.errors);
  m_parts.registrar.SetSender(&m_parts.link);
  m_parts.registrar.SetFrom(kOwnName);
  m_parts.registrar.Subscribe<Messages::SNMPmessage>(m_parts.onMessage);
  m_parts.registrar.Subscribe<Messages::SNMPupdateFinished>(m_parts.onUpdateFinished);
  m_parts.link.SetTextListener(&m_parts.registrar);
  m_parts.link.SetEvents(&m_parts.connectNotify);
  m_parts.link.SetErrorSink(&m_parts.errors);
  m_parts.link.SetPort(kLinkPort);
}

// The first socket of a process, and the first graceful end, load libraries. On
// the link's thread that could meet an unload, which holds the loader's lock and
// waits for that thread: for ever.
void Lifecycle::LoadSocketLibraries() {
  const Vask::Platform::SocketHandle socket = m_parts.sockets.OpenTcp();
  if (socket == Vask::Platform::kInvalidSocket) return;
  static_cast<void>(m_parts.sockets.Disconnect(socket));
  m_parts.sockets.Close(socket);
}

void Lifecycle::Stop(Ending ending) {
  LogPrinter::Instance().Info("Terminating SNMP extension agent..\n");
  m_parts.agent.SetTerminating();
  if (ending == Ending::kProcessEnd) {
    m_parts.link.RequestStop();
    return;
  }
  m_parts.link.StopThread();
  m_parts.timers.StopService();
}

}  // namespace Agent
