#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace Agent {

// One trap of the agent.
struct TrapRow {
  const char* name;
  std::uint32_t specificTrap;
  const char* raisedWhen;  // ends the sentence "Raised when ..."
};

// The agent's traps, in the order of their numbers. The registration and the
// management files are made from this table. Code that names one trap must use
// TrapName, so a misspelt name does not compile.
//
// mibs/Definitions.h holds the other texts of the management files. It does not compile
// if it has no row for a trap.
inline constexpr TrapRow kTraps[] = {
    {.name = "TrapSoftwareLinkUp",
     .specificTrap = 10,
     .raisedWhen = "an update cycle has finished"},
    {.name = "TrapSoftwareLinkDown",
     .specificTrap = 11,
     .raisedWhen = "the link to the main process is lost"},
    {.name = "TrapStreamsOK", .specificTrap = 12, .raisedWhen = "stream errors fall to 0"},
    {.name = "TrapStreamsFailed", .specificTrap = 13, .raisedWhen = "stream errors rise from 0"},
    {.name = "TrapAudioSourcesOK",
     .specificTrap = 14,
     .raisedWhen = "audio source errors fall to 0"},
    {.name = "TrapAudioSourcesFailed",
     .specificTrap = 15,
     .raisedWhen = "audio source errors rise from 0"},
    {.name = "TrapAudioSilenceDetectPassed",
     .specificTrap = 16,
     .raisedWhen = "silent audio sources fall to 0"},
    {.name = "TrapAudioSilenceDetectFailed",
     .specificTrap = 17,
     .raisedWhen = "silent audio sources rise from 0"},
    {.name = "TrapStreamsFailedUpdated",
     .specificTrap = 18,
     .raisedWhen = "stream errors change between two non-zero values"},
    {.name = "TrapAudioSourcesFailedUpdated",
     .specificTrap = 19,
     .raisedWhen = "audio source errors change between two non-zero values"},
    {.name = "TrapAudioSilenceDetectFailedUpdated",
     .specificTrap = 20,
     .raisedWhen = "silent audio sources change between two non-zero values"},
};

consteval bool TrapsAscend() {
  for (std::size_t i = 1; i < std::size(kTraps); ++i)
    if (kTraps[i].specificTrap <= kTraps[i - 1].specificTrap) return false;
  return true;
}
static_assert(TrapsAscend(), "each trap has a number of its own, and the numbers are in order");

// Returns the name of a trap of the table. Another name does not compile.
consteval const char* TrapName(std::string_view name) {
  for (const TrapRow& row : kTraps)
    if (row.name == name) return row.name;
  throw "no such trap";
}

}  // namespace Agent
