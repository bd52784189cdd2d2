#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "agent/MibEntry.h"

namespace Agent {

// One variable of the agent, with its initial value.
struct VariableRow {
  const char* name;
  UINT suffix[2];              // under the enterprise prefix
  BYTE type;                   // kTypeInt or kTypeString
  std::uint32_t capacity = 0;  // STRING: bytes, with the terminating zero
  std::int32_t number = 0;     // INT: initial value
  const char* text = nullptr;  // STRING: initial value
  const char* meaning;
};

// The agent's variables, in the order of a walk. The registration and the
// management files are made from this table. Code that names one variable must
// use VariableName, so a misspelt name does not compile.
//
// mibs/Definitions.h holds the other texts of the management files. It does not compile
// if it has no row for a variable.
inline constexpr VariableRow kVariables[] = {
    {.name = "LinkStatus",
     .suffix = {0, 0},
     .type = kTypeInt,
     .number = 1,
     .meaning = "State of the link to the main process: 0 while it is up, 1 while it is down."},
    {.name = "ProductName",
     .suffix = {1, 0},
     .type = kTypeString,
     .capacity = 128,
     .text = "Corvane",
     .meaning = "Product name, as the main process reports it."},
    {.name = "ProductVersion",
     .suffix = {1, 1},
     .type = kTypeString,
     .capacity = 64,
     .text = "1.x.x",
     .meaning = "Product version, as the main process reports it."},
    {.name = "StreamsCount", .suffix = {2, 0}, .type = kTypeInt, .meaning = "Number of streams."},
    {.name = "StreamsErrors",
     .suffix = {2, 1},
     .type = kTypeInt,
     .meaning = "Number of streams in error."},
    {.name = "AudioSourcesCount",
     .suffix = {2, 2},
     .type = kTypeInt,
     .meaning = "Number of audio sources."},
    {.name = "AudioSourcesErrors",
     .suffix = {2, 3},
     .type = kTypeInt,
     .meaning = "Number of audio sources in error."},
    {.name = "AudioSourcesSilence",
     .suffix = {2, 4},
     .type = kTypeInt,
     .meaning = "Number of audio sources that detect silence."},
};

consteval bool VariablesAscend() {
  for (std::size_t i = 1; i < std::size(kVariables); ++i) {
    const UINT(&before)[2] = kVariables[i - 1].suffix;
    const UINT(&after)[2] = kVariables[i].suffix;
    if (after[0] < before[0] || (after[0] == before[0] && after[1] <= before[1])) return false;
  }
  return true;
}
static_assert(VariablesAscend(), "a walk returns the variables in the order of their names");

// Returns the name of a variable of the table. Another name does not compile.
consteval const char* VariableName(std::string_view name) {
  for (const VariableRow& row : kVariables)
    if (row.name == name) return row.name;
  throw "no such variable";
}

}  // namespace Agent
