#pragma once

#include <iterator>
#include <string_view>

#include "agent/Traps.h"
#include "agent/Variables.h"

// What management modules and monitoring files say about the agent's variables
// and traps in addition to the agent's own tables.

namespace Mibs {

// The branches below the module's identifier. The first one also holds the
// notifications, because RFC 3584, section 3.1, converts an SNMPv1 trap to
// enterprise.0.<specific trap>.
struct Branch {
  const char* name;
  UINT subIdentifier;
};
inline constexpr Branch kBranches[] = {
    {"corvaneEvents", 0},
    {"corvaneProduct", 1},
    {"corvaneMedia", 2},
};
inline constexpr const Branch& kEvents = kBranches[0];

// The first number of a variable's suffix selects its branch.
constexpr const Branch& BranchOf(const Agent::VariableRow& variable) {
  for (const Branch& branch : kBranches)
    if (branch.subIdentifier == variable.suffix[0]) return branch;
  throw "no branch for this variable";
}

enum class Severity { Informational, Major, Critical };

// The severity as trap translators spell it.
[[nodiscard]] constexpr const char* Word(Severity severity) {
  switch (severity) {
    case Severity::Informational:
      return "INFORMATIONAL";
    case Severity::Major:
      return "MAJOR";
    case Severity::Critical:
      break;
  }
  return "CRITICAL";
}

// Trap translators show only `sentence`, so it must be understood without `more`.
struct Notification {
  const char* trap;
  Severity severity;
  const char* sentence;
  const char* more;
};
inline constexpr Notification kNotifications[] = {
    {Agent::TrapName("TrapSoftwareLinkUp"), Severity::Informational,
     "Corvane: link to the server software is up and all values are current.", ""},
    {Agent::TrapName("TrapSoftwareLinkDown"), Severity::Critical,
     "Corvane: link to the server software is down.",
     "Until corvaneTrapSoftwareLinkUp the other values are not current."},
    {Agent::TrapName("TrapStreamsOK"), Severity::Informational,
     "Corvane: no stream is in error any more.", "corvaneStreamsErrors is 0."},
    {Agent::TrapName("TrapStreamsFailed"), Severity::Major,
     "Corvane: at least one stream is in error.",
     "corvaneStreamsErrors went from 0 to a value above 0."},
    {Agent::TrapName("TrapAudioSourcesOK"), Severity::Informational,
     "Corvane: no audio source is in error any more.", "corvaneAudioSourcesErrors is 0."},
    {Agent::TrapName("TrapAudioSourcesFailed"), Severity::Major,
     "Corvane: at least one audio source is in error.",
     "corvaneAudioSourcesErrors went from 0 to a value above 0."},
    {Agent::TrapName("TrapAudioSilenceDetectPassed"), Severity::Informational,
     "Corvane: no audio source is silent any more.", "corvaneAudioSourcesSilence is 0."},
    {Agent::TrapName("TrapAudioSilenceDetectFailed"), Severity::Major,
     "Corvane: at least one audio source is silent.",
     "corvaneAudioSourcesSilence went from 0 to a value above 0."},
    {Agent::TrapName("TrapStreamsFailedUpdated"), Severity::Major,
     "Corvane: the number of streams in error changed.", "corvaneStreamsErrors is still above 0."},
    {Agent::TrapName("TrapAudioSourcesFailedUpdated"), Severity::Major,
     "Corvane: the number of audio sources in error changed.",
     "corvaneAudioSourcesErrors is still above 0."},
    {Agent::TrapName("TrapAudioSilenceDetectFailedUpdated"), Severity::Major,
     "Corvane: the number of silent audio sources changed.",
     "corvaneAudioSourcesSilence is still above 0."},
};

constexpr const Notification& NotificationOf(const Agent::TrapRow& trap) {
  for (const Notification& notification : kNotifications)
    if (std::string_view(notification.trap) == trap.name) return notification;
  throw "no notification for this trap";
}

// A variable's name as a Prometheus metric: lower case, and the counted thing
// comes first.
struct Metric {
  const char* variable;
  const char* name;
};
inline constexpr Metric kMetrics[] = {
    {Agent::VariableName("LinkStatus"), "corvane_link_down"},
    {Agent::VariableName("ProductName"), "corvane_product_name"},
    {Agent::VariableName("ProductVersion"), "corvane_product_version"},
    {Agent::VariableName("StreamsCount"), "corvane_streams"},
    {Agent::VariableName("StreamsErrors"), "corvane_streams_failed"},
    {Agent::VariableName("AudioSourcesCount"), "corvane_audio_sources"},
    {Agent::VariableName("AudioSourcesErrors"), "corvane_audio_sources_failed"},
    {Agent::VariableName("AudioSourcesSilence"), "corvane_audio_sources_silent"},
};

constexpr const Metric& MetricOf(const Agent::VariableRow& variable) {
  for (const Metric& metric : kMetrics)
    if (std::string_view(metric.variable) == variable.name) return metric;
  throw "no metric for this variable";
}

// This does not compile if a variable has no branch or no metric, or if a trap has
// no notification.
consteval bool IsComplete() {
  for (const Agent::VariableRow& variable : Agent::kVariables) {
    static_cast<void>(BranchOf(variable));
    static_cast<void>(MetricOf(variable));
  }
  for (const Agent::TrapRow& trap : Agent::kTraps) static_cast<void>(NotificationOf(trap));
  return std::size(kNotifications) == std::size(Agent::kTraps) &&
         std::size(kMetrics) == std::size(Agent::kVariables);
}
static_assert(IsComplete());

}  // namespace Mibs
