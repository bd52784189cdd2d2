#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "check/Verdicts.h"

namespace Check {

// The steps, one function each. Judge calls them in order.
[[nodiscard]] Verdict JudgeService(const Facts& facts);
[[nodiscard]] Verdict JudgeKey(const Facts& facts);
[[nodiscard]] Verdict JudgePath(const Facts& facts);
[[nodiscard]] Verdict JudgeFile(const Facts& facts);
[[nodiscard]] Verdict JudgeImage(const Facts& facts);
[[nodiscard]] Verdict JudgeLoaded(const Facts& facts);
[[nodiscard]] Verdict JudgeEvents(const Facts& facts, const Options& options);
[[nodiscard]] Verdict JudgeCommunities(const Facts& facts);
[[nodiscard]] Verdict JudgeManagers(const Facts& facts, const Options& options);
[[nodiscard]] Verdict JudgeTraps(const Facts& facts, const Options& options);
[[nodiscard]] Verdict JudgePort(const Facts& facts);
[[nodiscard]] Verdict JudgeLink(const Facts& facts);
[[nodiscard]] Verdict JudgeFolder(const Facts& facts);
[[nodiscard]] Verdict JudgeLog(const Facts& facts);
[[nodiscard]] Verdict JudgeAnswer(const Facts& facts, const Options& options);
[[nodiscard]] Verdict JudgeFirewall(const Facts& facts);

inline Verdict Ok(StepId step, std::string text, std::vector<std::string> details = {}) {
  return {step, Status::kOk, std::move(text), {}, std::move(details)};
}
inline Verdict Skipped(StepId step, std::string text, std::vector<std::string> details = {}) {
  return {step, Status::kSkipped, std::move(text), {}, std::move(details)};
}
// If `action` is empty, the verdict gets the action of the step.
[[nodiscard]] Verdict Failed(StepId step, std::string text, const std::string& action = {},
                             std::vector<std::string> details = {});

// True if a permitted manager is this machine itself.
[[nodiscard]] bool IsThisMachine(const std::string& manager);

// The texts of a list that are not empty.
[[nodiscard]] std::vector<std::string> TextsOf(const KeyFacts& key);

// "a, b, c"
[[nodiscard]] std::string Joined(const std::vector<std::string>& texts);

}  // namespace Check
