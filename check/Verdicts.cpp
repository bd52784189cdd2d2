#include "check/Verdicts.h"

#include <algorithm>

#include "agent/ObjectIdentifier.h"
#include "agent/Variables.h"
#include "check/VerdictParts.h"
#include "json/Ascii.h"

namespace Check {
namespace {

Oid OidOf(const Agent::VariableRow& row) {
  Agent::EnterprisePrefix prefix;
  const AsnObjectIdentifier name = prefix.Name();
  Oid oid(name.ids, name.ids + name.idLength);
  oid.insert(oid.end(), std::begin(row.suffix), std::end(row.suffix));
  oid.push_back(0);
  return oid;
}

}  // namespace

std::vector<Verdict> Judge(const Facts& facts, const Options& options) {
  return {JudgeService(facts),
          JudgeKey(facts),
          JudgePath(facts),
          JudgeFile(facts),
          JudgeImage(facts),
          JudgeLoaded(facts),
          JudgeEvents(facts, options),
          JudgeCommunities(facts),
          JudgeManagers(facts, options),
          JudgeTraps(facts, options),
          JudgePort(facts),
          JudgeLink(facts),
          JudgeFolder(facts),
          JudgeLog(facts),
          JudgeAnswer(facts, options),
          JudgeFirewall(facts)};
}

std::vector<Oid> RequestedVariables() {
  std::vector<Oid> oids;
  for (const Agent::VariableRow& row : Agent::kVariables) oids.push_back(OidOf(row));
  return oids;
}

std::string VariableNameOf(const Oid& requested) {
  for (const Agent::VariableRow& row : Agent::kVariables) {
    if (OidOf(row) == requested) return std::string("corvane") + row.name;
  }
  return {};
}

Verdict Failed(StepId step, std::string text, const std::string& action,
               std::vector<std::string> details) {
  std::string advice = action;
  if (advice.empty()) {
    advice = StepOf(step).ifNot;
    advice.erase(std::remove(advice.begin(), advice.end(), '`'), advice.end());
    advice += '.';
  }
  return {step, Status::kFailed, std::move(text), std::move(advice), std::move(details)};
}

bool IsThisMachine(const std::string& manager) {
  return Vask::EqualsIgnoringCase(manager, "localhost") || manager == "127.0.0.1" ||
         manager == "::1";
}

std::vector<std::string> TextsOf(const KeyFacts& key) {
  std::vector<std::string> texts;
  for (const SettingValue& value : key.values) {
    if (!value.text.empty()) texts.push_back(value.text);
  }
  return texts;
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

}  // namespace Check
