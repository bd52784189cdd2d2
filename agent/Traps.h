#pragma once

#include <cstdint>
#include <string_view>

namespace Agent {

class TrapTable;

// One trap as the agent knows it.
struct TrapRow {
  const char* name;
  std::uint32_t specificTrap;
  const char* raisedWhen;
};

// The agent's traps in the order of their numbers. This is the only list of
// them: registration, the handlers of updates, documentation and management
// files are made from it. The sentences finish "Raised when ...".
inline constexpr TrapRow kTraps[] = {
    {"TrapSoftwareLinkUp", 10, "an update cycle has finished"},
    {"TrapSoftwareLinkDown", 11, "the link to the main process is lost"},
    {"TrapStreamsOK", 12, "stream errors fall to 0"},
    {"TrapStreamsFailed", 13, "stream errors rise from 0"},
    {"TrapAudioSourcesOK", 14, "audio source errors fall to 0"},
    {"TrapAudioSourcesFailed", 15, "audio source errors rise from 0"},
    {"TrapAudioSilenceDetectPassed", 16, "silent audio sources fall to 0"},
    {"TrapAudioSilenceDetectFailed", 17, "silent audio sources rise from 0"},
    {"TrapStreamsFailedUpdated", 18, "stream errors change between two non-zero values"},
    {"TrapAudioSourcesFailedUpdated", 19, "audio source errors change between two non-zero values"},
    {"TrapAudioSilenceDetectFailedUpdated", 20,
     "silent audio sources change between two non-zero values"},
};

// The name of a trap of the table; a name that is not there does not compile.
consteval const char* TrapName(std::string_view name) {
  for (const TrapRow& row : kTraps)
    if (row.name == name) return row.name;
  throw "no such trap";
}

// Registers them all in their order. Once, on the thread that starts the agent.
void RegisterTraps(TrapTable& table);

}  // namespace Agent
