#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Mibs {

// What one row of the agent's tables says, as named texts.
using Facts = std::map<std::string, std::string, std::less<>>;

// One row for each variable, in the order of a walk:
//   name      StreamsErrors
//   oid       1.3.6.1.4.1.E.333.2.1, as a walk finds it
//   instance  the same with .0 behind it, as managers ask for it
//   metric    corvane_streams_failed
//   meaning   Number of streams in error.
[[nodiscard]] std::vector<Facts> VariableFacts();

// Those of them that are integers, and those that are texts.
[[nodiscard]] std::vector<Facts> NumberFacts();
[[nodiscard]] std::vector<Facts> TextFacts();

// One row for each trap, in the order of their numbers:
//   name      TrapStreamsFailed
//   oid       1.3.6.1.4.1.E.333.0.13 (RFC 3584, section 3.1)
//   tail      E.333.0.13: all spellings of the oid end in it
//   number    13
//   sentence  Corvane: at least one stream is in error.
//   more      what else there is to say; may be empty
//   severity  INFORMATIONAL, MAJOR or CRITICAL
//   raised    stream errors rise from 0
[[nodiscard]] std::vector<Facts> TrapFacts();

// What holds for the agent as a whole: enterprise (E), prefix (1.3.6.1.4.1.E.333),
// tail (E.333), version, the link's port, and the log's folder below the common
// application data.
[[nodiscard]] Facts AgentFacts();

}  // namespace Mibs
