#include "mibs/Definitions.h"
#include "mibs/Module.h"

namespace Mibs {

namespace {

constexpr char kHead[] = R"(VELTRIN-CORVANE-MIB DEFINITIONS ::= BEGIN

-- Made from the agent's own tables by the program mib-module; not edited by
-- hand.
--
-- The objects ending in .0 draw a complaint from some checkers: their names are
-- those of the installed base.

IMPORTS
    MODULE-IDENTITY, OBJECT-TYPE, NOTIFICATION-TYPE, Integer32, enterprises
        FROM SNMPv2-SMI
    DisplayString
        FROM SNMPv2-TC
    MODULE-COMPLIANCE, OBJECT-GROUP, NOTIFICATION-GROUP
        FROM SNMPv2-CONF;

corvane MODULE-IDENTITY
    LAST-UPDATED "202611210000Z"
    ORGANIZATION "Veltrin Systems"
    CONTACT-INFO "Veltrin Systems, technical support"
    DESCRIPTION
        "Health of a Corvane streaming-audio server, as its SNMP extension
        agent on Windows tells it.

        All objects are read-only.  Get answers an object's own name and the
        same name followed by .0 alike; GetNext and GetBulk answer an object's
        own name, without .0.

        Notifications are sent as SNMPv1 enterprise-specific traps without
        variable bindings: the enterprise is the name of this module, and the
        specific-trap number is the last number of the notification's name
        (RFC 3584, section 3.1).  Their time stamps count milliseconds since
        the agent's start, not hundredths of a second."
    REVISION "202611210000Z"
    DESCRIPTION "First version."
    ::= { veltrin 333 }

)";

constexpr char kConformance[] = R"(corvaneConformance OBJECT IDENTIFIER ::= { corvane 100 }
corvaneCompliances OBJECT IDENTIFIER ::= { corvaneConformance 1 }
corvaneGroups OBJECT IDENTIFIER ::= { corvaneConformance 2 }

corvaneCompliance MODULE-COMPLIANCE
    STATUS      current
    DESCRIPTION
        "What every version of the agent implements."
    MODULE
        MANDATORY-GROUPS { corvaneObjectGroup, corvaneNotificationGroup }
    ::= { corvaneCompliances 1 }

)";

std::string Object(const Agent::VariableRow& variable) {
  return std::string("corvane") + variable.name + " OBJECT-TYPE\n    SYNTAX      " +
         Syntax(variable.name, "Integer32") +
         "\n    MAX-ACCESS  read-only\n    STATUS      current\n    DESCRIPTION\n        " +
         Quoted(variable.meaning) + "\n    ::= { " + BranchOf(variable).name + ' ' +
         std::to_string(variable.suffix[1]) + " }\n\n";
}

std::string NotificationType(const Agent::TrapRow& trap) {
  return std::string("corvane") + trap.name +
         " NOTIFICATION-TYPE\n    STATUS      current\n    DESCRIPTION\n        " +
         NotificationText(trap.name) + '\n' + TranslatorLines(trap.name) + "    ::= { " +
         kEvents.name + ' ' + std::to_string(trap.specificTrap) + " }\n\n";
}

template <class Rows>
std::string Members(const Rows& rows) {
  std::string members;
  for (const auto& row : rows) {
    members += members.empty() ? "\n        " : ",\n        ";
    members += std::string("corvane") + row.name;
  }
  return members + "\n    }\n";
}

}  // namespace

std::string SmiV2Module() {
  std::string module = kHead + BranchLines() + '\n';
  for (const Agent::VariableRow& variable : Agent::kVariables) module += Object(variable);
  for (const Agent::TrapRow& trap : Agent::kTraps) module += NotificationType(trap);
  module += kConformance;
  module += "corvaneObjectGroup OBJECT-GROUP\n    OBJECTS {" + Members(Agent::kVariables) +
            "    STATUS      current\n    DESCRIPTION\n        \"All objects.\"\n"
            "    ::= { corvaneGroups 1 }\n\n";
  module += "corvaneNotificationGroup NOTIFICATION-GROUP\n    NOTIFICATIONS {" +
            Members(Agent::kTraps) +
            "    STATUS      current\n    DESCRIPTION\n        \"All notifications.\"\n"
            "    ::= { corvaneGroups 2 }\n\n";
  return module + "END\n";
}

}  // namespace Mibs
