#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/Facts.h"
#include "check/Options.h"
#include "check/Steps.h"

namespace Check {

enum class Status { kOk, kFailed, kSkipped };

// The result of one step.
struct Verdict {
  StepId step = StepId::kService;
  Status status = Status::kOk;
  std::string text;    // the finding; for a skipped step also the reason
  std::string action;  // what to do; empty unless the step failed
  std::vector<std::string> details;
};

// One verdict for each step, in the order of kSteps.
[[nodiscard]] std::vector<Verdict> Judge(const Facts& facts, const Options& options);

// The entries of the service's list that lead to this agent.
[[nodiscard]] std::vector<const AgentEntry*> OwnEntries(const RegistrationFacts& registration);

// Whether the path begins with a drive and a backslash, or with two backslashes. Windows searches
// for a file of any other path, and may find one in the folder of another program.
[[nodiscard]] bool IsFullPath(std::string_view path);

// A community of the service's list that may read. Empty if none is known.
[[nodiscard]] std::optional<std::string> ReadableCommunity(const SettingFacts& communities);

// The identifiers of the agent's variables as a manager requests them, in the order of a walk.
[[nodiscard]] std::vector<Oid> RequestedVariables();

// The agent's name for the variable with this identifier; empty if it has none.
[[nodiscard]] std::string VariableNameOf(const Oid& requested);

}  // namespace Check
