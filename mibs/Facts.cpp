#include "mibs/Facts.h"

#include <iterator>

#include "BuildSettings.h"
#include "agent/AgentProcess.h"
#include "agent/ObjectIdentifier.h"
#include "mibs/Definitions.h"

namespace Mibs {

namespace {

std::string Prefix() {
  Agent::EnterprisePrefix prefix;
  return Agent::DottedText(prefix.Name());
}

// From the enterprise number on.
std::string Tail(const std::string& oid) {
  return oid.substr(sizeof "1.3.6.1.4.1." - 1);
}

Facts Of(const Agent::VariableRow& variable) {
  Agent::EnterprisePrefix prefix;
  const std::string oid = Agent::DottedText(prefix.Name(), Agent::Lend(variable.suffix));
  return {{"name", variable.name},
          {"oid", oid},
          {"instance", oid + ".0"},
          {"metric", MetricOf(variable).name},
          {"meaning", variable.meaning}};
}

Facts Of(const Agent::TrapRow& trap) {
  const Notification& notification = NotificationOf(trap);
  const std::string number = std::to_string(trap.specificTrap);
  const std::string oid = Prefix() + '.' + std::to_string(kEvents.subIdentifier) + '.' + number;
  return {{"name", trap.name},
          {"oid", oid},
          {"tail", Tail(oid)},
          {"number", number},
          {"sentence", notification.sentence},
          {"more", notification.more},
          {"severity", Word(notification.severity)},
          {"raised", trap.raisedWhen}};
}

std::vector<Facts> VariablesOfType(BYTE type) {
  std::vector<Facts> rows;
  for (const Agent::VariableRow& variable : Agent::kVariables)
    if (variable.type == type) rows.push_back(Of(variable));
  return rows;
}

}  // namespace

std::vector<Facts> VariableFacts() {
  std::vector<Facts> rows;
  for (const Agent::VariableRow& variable : Agent::kVariables) rows.push_back(Of(variable));
  return rows;
}

std::vector<Facts> NumberFacts() {
  return VariablesOfType(Agent::kTypeInt);
}

std::vector<Facts> TextFacts() {
  return VariablesOfType(Agent::kTypeString);
}

std::vector<Facts> TrapFacts() {
  std::vector<Facts> rows;
  for (const Agent::TrapRow& trap : Agent::kTraps) rows.push_back(Of(trap));
  return rows;
}

Facts AgentFacts() {
  return {{"enterprise", std::to_string(CORVANE_ENTERPRISE)},
          {"prefix", Prefix()},
          {"tail", Tail(Prefix())},
          {"version", CORVANE_VERSION_TEXT},
          {"port", std::to_string(Agent::AgentProcess::kLinkPort)},
          {"log-folder",
           std::string(Agent::AgentProcess::kProductFolder) + Agent::AgentProcess::kLogsFolder}};
}

}  // namespace Mibs
