#pragma once

#include <cstdint>

#include "agent/Traps.h"
#include "messages/SNMPmessage.h"
#include "messages/SNMPtrap.h"

namespace Messages {
class Registrar;
}

namespace Agent {

class MyConnectNotify;
class SNMPExtensionAgent;

// A trap that a change of a count raises, and its name in the report to the main
// process.
struct ChangeTrap {
  const char* name;
  std::uint32_t trapType;  // a tag of SNMPtrap
};

// The traps of one count.
struct ChangeGroup {
  ChangeTrap ok;             // falls to 0
  ChangeTrap failed;         // rises from 0
  ChangeTrap failedUpdated;  // changes between two values that are not 0
};

inline constexpr ChangeGroup kStreamsErrors = {
    .ok = {TrapName("TrapStreamsOK"), Messages::SNMPtrap::kStreamsOK},
    .failed = {TrapName("TrapStreamsFailed"), Messages::SNMPtrap::kStreamsFailed},
    .failedUpdated = {TrapName("TrapStreamsFailedUpdated"),
                      Messages::SNMPtrap::kStreamsFailedUpdated},
};
inline constexpr ChangeGroup kAudioSourcesErrors = {
    .ok = {TrapName("TrapAudioSourcesOK"), Messages::SNMPtrap::kAudioSourcesOK},
    .failed = {TrapName("TrapAudioSourcesFailed"), Messages::SNMPtrap::kAudioSourcesFailed},
    .failedUpdated = {TrapName("TrapAudioSourcesFailedUpdated"),
                      Messages::SNMPtrap::kAudioSourcesFailedUpdated},
};
inline constexpr ChangeGroup kAudioSourcesSilence = {
    .ok = {TrapName("TrapAudioSilenceDetectPassed"), Messages::SNMPtrap::kAudioSilenceDetectPassed},
    .failed = {TrapName("TrapAudioSilenceDetectFailed"),
               Messages::SNMPtrap::kAudioSilenceDetectFailed},
    .failedUpdated = {TrapName("TrapAudioSilenceDetectFailedUpdated"),
                      Messages::SNMPtrap::kAudioSilenceDetectFailedUpdated},
};

// The trap that the change of a count from `last` to `now` raises; null if it did
// not change. Refers to `group`.
[[nodiscard]] constexpr const ChangeTrap* TrapOfChange(const ChangeGroup& group, std::uint32_t last,
                                                       std::uint32_t now) noexcept {
  if (now == last) return nullptr;
  if (now == 0) return &group.ok;
  return last != 0 ? &group.failedUpdated : &group.failed;
}

// Writes what the main process reports into the variables, and raises a trap when
// a count of errors or silence changes. Reports every such trap back to the main
// process.
//
// Threads: both handlers run on the link's reader thread, under the registrar's
// lock, one at a time.
class VariableUpdates {
 public:
  // All outlive this object.
  VariableUpdates(SNMPExtensionAgent& agent, MyConnectNotify& connectNotify,
                  Messages::Registrar& registrar) noexcept
      : m_agent(agent), m_connectNotify(connectNotify), m_registrar(registrar) {}

  // The handler of `SNMPmessage`: one group of values. Ignores a group for which
  // the agent has no variables.
  void OnMessage(const Messages::SNMPmessage& message);

  // The handler of `SNMPupdateFinished`, which may arrive more than once.
  void OnUpdateFinished();

 private:
  void UpdateProduct(const Messages::SNMPmessage::Product& product);
  void UpdateStreams(const Messages::SNMPmessage::Streams& streams);
  void UpdateAudioSources(const Messages::SNMPmessage::AudioSources& sources);
  void Compare(std::int32_t count, std::uint32_t& last, const ChangeGroup& group);

  SNMPExtensionAgent& m_agent;
  MyConnectNotify& m_connectNotify;
  Messages::Registrar& m_registrar;
  // The last reported values. They outlive a lost link: a main process that comes
  // back with other counts raises the traps of that change.
  std::uint32_t m_lastStreamsErrors = 0;
  std::uint32_t m_lastAudioSourcesErrors = 0;
  std::uint32_t m_lastAudioSourcesSilence = 0;
};

}  // namespace Agent
