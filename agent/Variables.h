#pragma once

#include <cstdint>
#include <string_view>

#include "agent/MibEntry.h"

namespace Agent {

class MibTable;

// One variable as the agent is born with it.
struct VariableRow {
  const char* name;
  UINT suffix[2];          // under the enterprise prefix
  BYTE type;               // kTypeInt or kTypeString
  std::uint32_t capacity;  // STRING: bytes, the terminating zero included
  std::int32_t number;     // INT: initial value
  const char* text;        // STRING: initial value
  const char* meaning;
};

// The agent's variables in the order of their object identifiers, which is the
// order of a walk. This is the only list of them: registration, the handlers of
// updates, documentation and management files are made from it.
inline constexpr VariableRow kVariables[] = {
    {"LinkStatus",
     {0, 0},
     kTypeInt,
     0,
     1,
     nullptr,
     "State of the link to the main process: 0 while it is up, 1 while it is down."},
    {"ProductName",
     {1, 0},
     kTypeString,
     128,
     0,
     "Corvane",
     "Product name, as the main process reports it."},
    {"ProductVersion",
     {1, 1},
     kTypeString,
     64,
     0,
     "1.x.x",
     "Product version, as the main process reports it."},
    {"StreamsCount", {2, 0}, kTypeInt, 0, 0, nullptr, "Number of streams."},
    {"StreamsErrors", {2, 1}, kTypeInt, 0, 0, nullptr, "Number of streams in error."},
    {"AudioSourcesCount", {2, 2}, kTypeInt, 0, 0, nullptr, "Number of audio sources."},
    {"AudioSourcesErrors", {2, 3}, kTypeInt, 0, 0, nullptr, "Number of audio sources in error."},
    {"AudioSourcesSilence",
     {2, 4},
     kTypeInt,
     0,
     0,
     nullptr,
     "Number of audio sources that detect silence."},
};

// The name of a variable of the table; a name that is not there does not compile.
consteval const char* VariableName(std::string_view name) {
  for (const VariableRow& row : kVariables)
    if (row.name == name) return row.name;
  throw "no such variable";
}

// Registers them all, from the last to the first, since each registration takes
// the entry that follows it. One that is there from an earlier attempt stays. One
// that there is no memory for is left out, which is logged, and the one before
// it then has none to follow. On the thread that starts the agent, and not
// while anybody else uses the table.
void RegisterVariables(MibTable& table);

}  // namespace Agent
