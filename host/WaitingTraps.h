#pragma once

#include <cstddef>
#include <deque>
#include <string>

#include "host/ExtensionModule.h"

namespace Host {

// The traps for the AgentX master, oldest first. They wait here while the master is away.
// For one thread.
//
// Three functions return a line for the log; it is empty if there is nothing to report.
class WaitingTraps {
 public:
  // Enough for days of an agent that reports changes only. The last traps describe the
  // present state, so the oldest ones are dropped first.
  static constexpr std::size_t kMost = 1000;

  // Adds a trap, and drops the oldest one if there are too many.
  [[nodiscard]] std::string Add(Trap trap);

  // The master is away until the first of these calls.
  [[nodiscard]] std::string MasterArrives();
  void MasterLeaves() { m_isMasterThere = false; }

  // True if the master is there and a trap waits for it.
  [[nodiscard]] bool CanSend() const { return m_isMasterThere && !m_traps.empty(); }

  // Removes the oldest trap and returns it. Call it only if CanSend().
  [[nodiscard]] Trap Take();

  // The host ends: nobody takes the traps that still wait.
  [[nodiscard]] std::string AtEnd() const;

 private:
  std::deque<Trap> m_traps;
  std::size_t m_dropped = 0;  // since the master left
  bool m_isMasterThere = false;
};

}  // namespace Host
