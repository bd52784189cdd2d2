#include "agent/VariableUpdates.h"

#include <utility>

#include "Src/LogPrinter.h"
#include "agent/MyConnectNotify.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/Variables.h"
#include "messages/Registrar.h"

namespace Agent {

using Messages::SNMPmessage;
using Vask::LogPrinter;

void VariableUpdates::OnMessage(const SNMPmessage& message) {
  switch (message.m_messageType.m_tag) {
    case SNMPmessage::kProduct:
      return UpdateProduct(message.m_messageType.m_Product);
    case SNMPmessage::kStreams:
      return UpdateStreams(message.m_messageType.m_Streams);
    case SNMPmessage::kAudioSources:
      return UpdateAudioSources(message.m_messageType.m_AudioSources);
    default:
      return;
  }
}

void VariableUpdates::OnUpdateFinished() {
  LogPrinter::Instance().Info("SNMP variables successfully updated\n");
  m_connectNotify.UpdateFinished();
  m_agent.Traps().Queue(TrapName("TrapSoftwareLinkUp"));
}

void VariableUpdates::UpdateProduct(const SNMPmessage::Product& product) {
  LogPrinter::Instance().Info("Update product information: name='%s', version='%s'\n",
                              product.m_Name, product.m_Version);
  MibTable& variables = m_agent.Variables();
  variables.SetString(VariableName("ProductName"), product.m_Name);
  variables.SetString(VariableName("ProductVersion"), product.m_Version);
}

void VariableUpdates::UpdateStreams(const SNMPmessage::Streams& streams) {
  LogPrinter::Instance().Info("Update streams: count=%d, errors=%d\n", streams.m_Count,
                              streams.m_Errors);
  MibTable& variables = m_agent.Variables();
  variables.SetInt(VariableName("StreamsCount"), streams.m_Count);
  variables.SetInt(VariableName("StreamsErrors"), streams.m_Errors);
  Compare(streams.m_Errors, m_lastStreamsErrors, kStreamsErrors);
}

void VariableUpdates::UpdateAudioSources(const SNMPmessage::AudioSources& sources) {
  LogPrinter::Instance().Info("Update audio sources: count=%d, errors=%d, silence=%d\n",
                              sources.m_Count, sources.m_Errors, sources.m_Silence);
  MibTable& variables = m_agent.Variables();
  variables.SetInt(VariableName("AudioSourcesCount"), sources.m_Count);
  variables.SetInt(VariableName("AudioSourcesErrors"), sources.m_Errors);
  variables.SetInt(VariableName("AudioSourcesSilence"), sources.m_Silence);
  Compare(sources.m_Errors, m_lastAudioSourcesErrors, kAudioSourcesErrors);
  Compare(sources.m_Silence, m_lastAudioSourcesSilence, kAudioSourcesSilence);
}

void VariableUpdates::Compare(std::int32_t count, std::uint32_t& last, const ChangeGroup& group) {
  const auto now = static_cast<std::uint32_t>(count);
  const ChangeTrap* const trap = TrapOfChange(group, std::exchange(last, now), now);
  if (trap == nullptr) return;
  m_agent.Traps().Queue(trap->name);
  Messages::SNMPtrap report;
  report.m_trapType.m_tag = trap->trapType;
  m_registrar.SendSNMPtrap(report);
}

}  // namespace Agent
