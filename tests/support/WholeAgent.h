#pragma once

#include "Src/DailyLog.h"
#include "Src/ErrReporter.h"
#include "Src/TimerService.h"
#include "agent/EntryPoints.h"
#include "agent/Lifecycle.h"
#include "agent/MyConnectNotify.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/VariableUpdates.h"
#include "messages/Registrar.h"
#include "net/JsonSocket.h"

namespace Agent::Tests {

// What the agent runs on. The timer service has its own, so that a test can let
// it run faster than the rest, or not at all.
struct Machine {
  Vask::Platform::Clock& clock;
  Vask::Platform::Files& files;
  Vask::Platform::Sockets& sockets;
  Vask::Platform::Threading& threading;
  Vask::Platform::Clock& timerClock;
  Vask::Platform::Threading& timerThreading;
};

// The agent put together as in its process, handlers included, but on a machine
// that a test hands in. One at a time, since there is one registrar; it stops
// when it goes.
class WholeAgent {
 public:
  explicit WholeAgent(const Machine& machine);
  ~WholeAgent();
  WholeAgent(const WholeAgent&) = delete;
  WholeAgent& operator=(const WholeAgent&) = delete;

  Vask::DailyLog log;
  Vask::ErrReporter errors;
  Vask::TimerService timers;
  SNMPExtensionAgent agent;
  MyConnectNotify connectNotify;
  VariableUpdates updates;
  Vask::JsonSocket link;
  Lifecycle lifecycle;
  EntryPoints entries;

 private:
  static void HandleMessage(const Messages::SNMPmessage& message, std::int32_t id, void* context);
  static void HandleUpdateFinished(const Messages::SNMPupdateFinished& message, std::int32_t id,
                                   void* context);
};

}  // namespace Agent::Tests
