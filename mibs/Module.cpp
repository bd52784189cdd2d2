#include "mibs/Module.h"

#include <stdexcept>
#include <string_view>

#include "BuildSettings.h"
#include "messages/SNMPmessage.h"
#include "mibs/Definitions.h"

namespace Mibs {

namespace {

const Agent::VariableRow& Variable(const std::string& name) {
  for (const Agent::VariableRow& row : Agent::kVariables)
    if (name == row.name) return row;
  throw std::invalid_argument(name);
}

const Notification& Find(const std::string& trapName) {
  for (const Notification& row : kNotifications)
    if (trapName == row.trap) return row;
  throw std::invalid_argument(trapName);
}

}  // namespace

const char* Word(Severity severity) {
  switch (severity) {
    case Severity::Informational:
      return "INFORMATIONAL";
    case Severity::Major:
      return "MAJOR";
    case Severity::Critical:
      return "CRITICAL";
  }
  throw std::invalid_argument("severity");
}

std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}

std::string BranchLines() {
  std::string lines =
      "veltrin OBJECT IDENTIFIER ::= { enterprises " + std::to_string(CORVANE_ENTERPRISE) + " }\n";
  for (const Branch& branch : kBranches) {
    lines += std::string(branch.name) + " OBJECT IDENTIFIER ::= { corvane " +
             std::to_string(branch.subIdentifier) + " }\n";
  }
  return lines;
}

std::string TranslatorLines(const char* trapName) {
  const Notification& notification = Find(trapName);
  return "    --#SUMMARY   " + Quoted(notification.sentence) + "\n    --#ARGUMENTS { }\n" +
         "    --#SEVERITY  " + Word(notification.severity) + '\n';
}

std::string NotificationText(const char* trapName) {
  const Notification& notification = Find(trapName);
  std::string text = notification.sentence;
  if (*notification.more != '\0') text += std::string("\n\n        ") + notification.more;
  return Quoted(text);
}

std::string Syntax(const char* variableName, const char* integer) {
  const Agent::VariableRow& variable = Variable(variableName);
  if (variable.type == Agent::kTypeString) {
    // A text may fill the whole capacity: the answer has no terminating zero.
    return "DisplayString (SIZE (0.." + std::to_string(variable.capacity) + "))";
  }
  if (variable.name == std::string_view(Agent::VariableName("LinkStatus")))
    return "INTEGER { up(0), down(1) }";
  return std::string(integer) + " (" + std::to_string(Messages::kSnmpCount.lower) + ".." +
         std::to_string(Messages::kSnmpCount.upper) + ")";
}

}  // namespace Mibs
