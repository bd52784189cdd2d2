#include "host/WaitingTraps.h"

#include <utility>

namespace Host {
namespace {

std::string Count(std::size_t traps) {
  return std::to_string(traps) + (traps == 1 ? " trap" : " traps");
}

}  // namespace

std::string WaitingTraps::Add(Trap trap) {
  m_traps.push_back(std::move(trap));
  if (m_traps.size() > kMost) {
    m_traps.pop_front();
    ++m_dropped;
    if (m_dropped > 1) return {};
    return "more than " + Count(kMost) + " wait for the AgentX master: the oldest are dropped";
  }
  if (m_isMasterThere || m_traps.size() > 1) return {};
  return "the AgentX master is away: traps wait for its return";
}

std::string WaitingTraps::MasterArrives() {
  m_isMasterThere = true;
  if (m_traps.empty()) return {};
  return "the AgentX master is there: it receives " + Count(m_traps.size()) + " that waited; " +
         Count(std::exchange(m_dropped, 0)) + " dropped";
}

Trap WaitingTraps::Take() {
  Trap trap = std::move(m_traps.front());
  m_traps.pop_front();
  return trap;
}

std::string WaitingTraps::AtEnd() const {
  if (m_traps.empty()) return {};
  return Count(m_traps.size()) + " lost: the AgentX master did not return";
}

}  // namespace Host
