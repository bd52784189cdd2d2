#include "tests/support/WholeAgent.h"

#include "Src/LogPrinter.h"

namespace Agent::Tests {

namespace {

WholeAgent* g_agent = nullptr;  // whose handlers the registrar calls

Messages::Registrar& TheRegistrar() {
  return Messages::Registrar::Instance();
}

}  // namespace

WholeAgent::WholeAgent(const Machine& machine)
    : log(machine.clock, machine.files, machine.sockets),
      timers(machine.timerClock, machine.timerThreading),
      agent(machine.clock, machine.threading),
      connectNotify(agent, timers, TheRegistrar()),
      updates(agent, connectNotify, TheRegistrar()),
      link(&connectNotify, machine.clock, machine.sockets, machine.threading),
      lifecycle({agent, connectNotify, link, timers, log, errors, TheRegistrar(), machine.files,
                 machine.sockets, &HandleMessage, &HandleUpdateFinished}),
      entries(agent, lifecycle) {
  g_agent = this;
}

WholeAgent::~WholeAgent() {
  link.StopThread();
  timers.StopService();
  TheRegistrar().Unsubscribe<Messages::SNMPmessage>(&HandleMessage);
  TheRegistrar().Unsubscribe<Messages::SNMPupdateFinished>(&HandleUpdateFinished);
  TheRegistrar().SetSender(nullptr);
  TheRegistrar().SetErrorSink(nullptr);
  g_agent = nullptr;
}

void WholeAgent::HandleMessage(const Messages::SNMPmessage& message, std::int32_t, void*) {
  g_agent->updates.OnMessage(message);
}

void WholeAgent::HandleUpdateFinished(const Messages::SNMPupdateFinished&, std::int32_t, void*) {
  g_agent->updates.OnUpdateFinished();
}

}  // namespace Agent::Tests
