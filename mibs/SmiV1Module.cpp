#include "mibs/Definitions.h"
#include "mibs/Module.h"

namespace Mibs {

namespace {

constexpr char kHead[] = R"(VELTRIN-CORVANE-V1-MIB DEFINITIONS ::= BEGIN

-- Made from the agent's own tables by the program mib-module; not edited by
-- hand.
--
-- For managers that import TRAP-TYPE definitions only. Load this or
-- VELTRIN-CORVANE-MIB, not both.

IMPORTS
    enterprises
        FROM RFC1155-SMI
    DisplayString
        FROM RFC1213-MIB
    OBJECT-TYPE
        FROM RFC-1212
    TRAP-TYPE
        FROM RFC-1215;

)";

std::string Object(const Agent::VariableRow& variable) {
  return std::string("corvane") + variable.name + " OBJECT-TYPE\n    SYNTAX      " +
         Syntax(variable.name, "INTEGER") +
         "\n    ACCESS      read-only\n    STATUS      mandatory\n    DESCRIPTION\n        " +
         Quoted(variable.meaning) + "\n    ::= { " + BranchOf(variable).name + ' ' +
         std::to_string(variable.suffix[1]) + " }\n\n";
}

std::string TrapType(const Agent::TrapRow& trap) {
  return std::string("corvane") + trap.name +
         " TRAP-TYPE\n    ENTERPRISE  corvane\n    DESCRIPTION\n        " +
         NotificationText(trap.name) + '\n' + TranslatorLines(trap.name) +
         "    ::= " + std::to_string(trap.specificTrap) + "\n\n";
}

}  // namespace

std::string SmiV1Module() {
  std::string module = kHead;
  module += "corvane OBJECT IDENTIFIER ::= { veltrin 333 }\n" + BranchLines() + '\n';
  for (const Agent::VariableRow& variable : Agent::kVariables) module += Object(variable);
  for (const Agent::TrapRow& trap : Agent::kTraps) module += TrapType(trap);
  return module + "END\n";
}

}  // namespace Mibs
