#pragma once

#include <cstdint>

#include "agent/Traps.h"
#include "messages/SNMPtrap.h"

namespace Agent {

// A trap that a change of a count raises, and what it is called when it is
// reported back to the main process.
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
    {TrapName("TrapStreamsOK"), Messages::SNMPtrap::kStreamsOK},
    {TrapName("TrapStreamsFailed"), Messages::SNMPtrap::kStreamsFailed},
    {TrapName("TrapStreamsFailedUpdated"), Messages::SNMPtrap::kStreamsFailedUpdated},
};
inline constexpr ChangeGroup kAudioSourcesErrors = {
    {TrapName("TrapAudioSourcesOK"), Messages::SNMPtrap::kAudioSourcesOK},
    {TrapName("TrapAudioSourcesFailed"), Messages::SNMPtrap::kAudioSourcesFailed},
    {TrapName("TrapAudioSourcesFailedUpdated"), Messages::SNMPtrap::kAudioSourcesFailedUpdated},
};
inline constexpr ChangeGroup kAudioSourcesSilence = {
    {TrapName("TrapAudioSilenceDetectPassed"), Messages::SNMPtrap::kAudioSilenceDetectPassed},
    {TrapName("TrapAudioSilenceDetectFailed"), Messages::SNMPtrap::kAudioSilenceDetectFailed},
    {TrapName("TrapAudioSilenceDetectFailedUpdated"),
     Messages::SNMPtrap::kAudioSilenceDetectFailedUpdated},
};

// The trap that a count's change from `last` to `now` raises; null when it did
// not change. Refers to `group`.
[[nodiscard]] constexpr const ChangeTrap* TrapOfChange(const ChangeGroup& group, std::uint32_t last,
                                                       std::uint32_t now) noexcept {
  if (now == last) return nullptr;
  if (now == 0) return &group.ok;
  return last != 0 ? &group.failedUpdated : &group.failed;
}

}  // namespace Agent
