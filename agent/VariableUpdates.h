#pragma once

#include <cstdint>

#include "messages/SNMPmessage.h"

namespace Messages {
class Registrar;
}

namespace Agent {

class MyConnectNotify;
class SNMPExtensionAgent;
struct ChangeGroup;

// Takes what the main process reports over into the variables, and raises a
// trap where a count of errors or silence changes. Every such trap is reported
// back to the main process.
//
// Threads: both handlers run on the link's reader thread, under the registrar's
// lock, one at a time.
class VariableUpdates {
 public:
  // All outlive this object.
  VariableUpdates(SNMPExtensionAgent& agent, MyConnectNotify& connectNotify,
                  Messages::Registrar& registrar) noexcept
      : m_agent(agent), m_connectNotify(connectNotify), m_registrar(registrar) {}

  // The handler of `SNMPmessage`: one group of values. Groups that the agent
  // has no variables for are ignored.
  void OnMessage(const Messages::SNMPmessage& message);

  // The handler of `SNMPupdateFinished`, which may come more than once.
  void OnUpdateFinished();

 private:
  void UpdateProduct(const Messages::SNMPmessage::Product& product);
  void UpdateStreams(const Messages::SNMPmessage::Streams& streams);
  void UpdateAudioSources(const Messages::SNMPmessage::AudioSources& sources);
  void Compare(std::int32_t count, std::uint32_t& last, const ChangeGroup& group);

  SNMPExtensionAgent& m_agent;
  MyConnectNotify& m_connectNotify;
  Messages::Registrar& m_registrar;
  // What was last reported. Never reset, not even when the link is lost: a
  // main process that comes back with other counts raises the traps it owes.
  std::uint32_t m_lastStreamsErrors = 0;
  std::uint32_t m_lastAudioSourcesErrors = 0;
  std::uint32_t m_lastAudioSourcesSilence = 0;
};

}  // namespace Agent
