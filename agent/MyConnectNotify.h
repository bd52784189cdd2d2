#pragma once

#include <atomic>
#include <cstdint>

#include "Src/TimerService.h"
#include "net/LinkInterfaces.h"

namespace Messages {
class Registrar;
}

namespace Agent {

class SNMPExtensionAgent;

// Follows the link to the main process. It keeps `LinkStatus` current and raises
// the trap of a lost link. After every connection it requests an update,
// repeatedly until one has finished.
//
// Threads: the link's reader calls the four events, and the timer's thread calls
// the tick. Any thread may call UpdateFinished. The calls block only for the
// timer service's lock and for a send on the link.
class MyConnectNotify final : public Vask::IJsonSocketEvents, public Vask::ITimerServiceClient {
 public:
  // From a connection to its first request, and from each request to the next.
  // After the first connection the agent waits longer: main process and agent
  // start together, and the main process takes longer.
  static constexpr std::uint32_t kFirstRequestMs = 15000;
  static constexpr std::uint32_t kRequestAgainMs = 2500;

  // All outlive this object. It must not be destroyed while the timer service or
  // the link may still call it.
  MyConnectNotify(SNMPExtensionAgent& agent, Vask::TimerService& timers,
                  Messages::Registrar& registrar) noexcept
      : m_agent(agent), m_timers(timers), m_registrar(registrar) {}

  void OnConnecting() override {}
  void OnConnectFailed() override { ChangeState(kLost); }
  void OnConnected() override { ChangeState(kConnected); }
  void OnDisconnected() override { ChangeState(kLost); }

  // Requests an update. After an update has finished, stops the requests.
  void OnTimer(std::uint32_t timerId, std::uint64_t parameter) override;

  // The main process has sent everything.
  void UpdateFinished() noexcept { m_updated.store(true, std::memory_order_relaxed); }

 private:
  enum LinkState : std::int32_t { kUnknown = -1, kConnected = 0, kLost = 1 };

  void ChangeState(LinkState state);
  void TakeUpConnection();
  void StartRequests();
  void TakeLoss();
  [[nodiscard]] bool RequestsAreOver() const noexcept;

  SNMPExtensionAgent& m_agent;
  Vask::TimerService& m_timers;
  Messages::Registrar& m_registrar;
  std::atomic<std::int32_t> m_linkState{kUnknown};
  std::atomic<bool> m_updated{false};  // an update has finished since the last connection
  bool m_firstConnection = true;       // the reader thread's own
};

}  // namespace Agent
