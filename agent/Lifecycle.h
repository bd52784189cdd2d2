#pragma once

#include <cstdint>

#include "messages/Registrar.h"
#include "messages/SNMPmessage.h"

namespace Vask {
class DailyLog;
class ErrReporter;
class JsonSocket;
class TimerService;
}  // namespace Vask
namespace Vask::Platform {
class Files;
class Sockets;
}  // namespace Vask::Platform

namespace Agent {

class MyConnectNotify;
class SNMPExtensionAgent;

// How the agent comes to its end.
enum class Ending {
  kUnload,      // the module goes, the process stays: its threads end first
  kProcessEnd,  // the process goes: nothing is waited for, since on Windows the
                // threads were killed already
};

// The start and the stop of the whole agent.
//
// Threads: Start runs on the thread that calls the module's entry point, Stop
// on the one that unloads it, possibly under the loader's lock; never both at
// once.
class Lifecycle {
 public:
  // Port of the main process's link. There is no setting for it.
  static constexpr std::uint16_t kLinkPort = 16969;

  // Under the folder of the system for data that all users share, and the
  // log's folder under that.
  static constexpr char kProductFolder[] = "\\Veltrin Systems\\Corvane\\SNMP";
  static constexpr char kLogsFolder[] = "\\Logs";

  // What is started and stopped. All outlive this object.
  struct Parts {
    SNMPExtensionAgent& agent;
    MyConnectNotify& connectNotify;
    Vask::JsonSocket& link;
    Vask::TimerService& timers;
    Vask::DailyLog& log;
    Vask::ErrReporter& errors;
    Messages::Registrar& registrar;
    Vask::Platform::Files& files;
    Vask::Platform::Sockets& sockets;  // those that the link uses
    Messages::Handler<Messages::SNMPmessage> onMessage;
    Messages::Handler<Messages::SNMPupdateFinished> onUpdateFinished;
  };
  explicit Lifecycle(const Parts& parts) noexcept : m_parts(parts) {}

  // Opens the log, starts the timer service, registers variables and traps and
  // opens the link. False at the first failure; what was done by then stays. A
  // main process that does not answer is no failure: the link goes on trying.
  //
  // Started again while it runs, it answers false, and the running agent goes
  // on: nothing is registered twice and the link is left alone.
  [[nodiscard]] bool Start();

  // Ends the connection in an orderly way, and before an unload both threads:
  // then it returns when they are done, which takes a few tenths of a second at
  // most. Works without a start, too.
  void Stop(Ending ending);

 private:
  [[nodiscard]] bool OpenLog();
  [[nodiscard]] bool OpenLink();
  void WireLink();
  void LoadSocketLibraries();

  Parts m_parts;
};

}  // namespace Agent
