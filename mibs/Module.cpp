#include "mibs/Module.h"

#include "BuildSettings.h"
#include "messages/SNMPmessage.h"
#include "mibs/Definitions.h"

namespace Mibs {

namespace {

constexpr char kV2Head[] = R"(VELTRIN-CORVANE-MIB DEFINITIONS ::= BEGIN

-- The program mib-module writes this file from the agent's tables.  Do not edit
-- it.
--
-- Some checkers complain about objects whose identifier ends in .0.  Installed
-- systems use these identifiers, so they stay.

IMPORTS
    MODULE-IDENTITY, OBJECT-TYPE, NOTIFICATION-TYPE, Integer32, enterprises
        FROM SNMPv2-SMI
    SnmpAdminString
        FROM SNMP-FRAMEWORK-MIB
    MODULE-COMPLIANCE, OBJECT-GROUP, NOTIFICATION-GROUP
        FROM SNMPv2-CONF;

corvane MODULE-IDENTITY
    LAST-UPDATED "202611220000Z"
    ORGANIZATION "Veltrin Systems"
    CONTACT-INFO "Veltrin Systems, technical support"
    DESCRIPTION
        "The state of a Corvane streaming-audio server.  Its SNMP extension
        agent on Windows reports this state.

        All objects are read-only.  A Get request returns an object for its
        identifier, and for its identifier with any numbers appended.  Managers
        append .0.  GetNext and GetBulk return the identifier alone.

        The agent reports what the server software has sent.  If that software
        hangs, the link stays up and all objects keep their last values.

        Notifications are SNMPv1 enterprise-specific traps without variable
        bindings.  The enterprise is the identifier of this module.  The
        specific-trap number is the last number of the notification's
        identifier (RFC 3584, section 3.1).  The time stamp counts milliseconds
        since the start of the agent, not hundredths of a second."
    REVISION "202611220000Z"
    DESCRIPTION
        "The texts are UTF-8, so their type is SnmpAdminString instead of
        DisplayString.  A Get request may append any numbers."
    REVISION "202611210000Z"
    DESCRIPTION "First version."
    ::= { veltrin 333 }

)";

constexpr char kV2Compliance[] = R"(corvaneConformance OBJECT IDENTIFIER ::= { corvane 100 }
corvaneCompliances OBJECT IDENTIFIER ::= { corvaneConformance 1 }
corvaneGroups OBJECT IDENTIFIER ::= { corvaneConformance 2 }

corvaneCompliance MODULE-COMPLIANCE
    STATUS      current
    DESCRIPTION
        "Every version of the agent implements these groups."
    MODULE
        MANDATORY-GROUPS { corvaneObjectGroup, corvaneNotificationGroup }
    ::= { corvaneCompliances 1 }

)";

constexpr char kV1Head[] = R"(VELTRIN-CORVANE-V1-MIB DEFINITIONS ::= BEGIN

-- The program mib-module writes this file from the agent's tables.  Do not edit
-- it.
--
-- This module is for managers that cannot import SMIv2.  Load this module or
-- VELTRIN-CORVANE-MIB, not both.

IMPORTS
    enterprises
        FROM RFC1155-SMI
    OBJECT-TYPE
        FROM RFC-1212
    TRAP-TYPE
        FROM RFC-1215;

corvane OBJECT IDENTIFIER ::= { veltrin 333 }
)";

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
  return lines + '\n';
}

// What the versions of SMI spell differently.
struct Spelling {
  const char* integer;
  const char* text;
  const char* clauses;
};
constexpr Spelling kV2Spelling = {"Integer32", "SnmpAdminString",
                                  "    MAX-ACCESS  read-only\n    STATUS      current\n"};
// SMIv1 has no type for texts in UTF-8.
constexpr Spelling kV1Spelling = {"INTEGER", "OCTET STRING",
                                  "    ACCESS      read-only\n    STATUS      mandatory\n"};

std::string Syntax(const Agent::VariableRow& variable, const Spelling& spelling) {
  if (variable.type == Agent::kTypeString) {
    // A text may fill the whole capacity: the response has no terminating zero.
    return std::string(spelling.text) + " (SIZE (0.." + std::to_string(variable.capacity) + "))";
  }
  if (variable.name == std::string_view(Agent::VariableName("LinkStatus")))
    return "INTEGER { up(0), down(1) }";
  return std::string(spelling.integer) + " (" + std::to_string(Messages::kSnmpCount.lower) + ".." +
         std::to_string(Messages::kSnmpCount.upper) + ")";
}

std::string Object(const Agent::VariableRow& variable, const Spelling& spelling) {
  const char* const encoding =
      variable.type == Agent::kTypeString ? "\n\n        The text is UTF-8." : "";
  return std::string("corvane") + variable.name + " OBJECT-TYPE\n    SYNTAX      " +
         Syntax(variable, spelling) + '\n' + spelling.clauses + "    DESCRIPTION\n        " +
         Quoted(std::string(variable.meaning) + encoding) + "\n    ::= { " +
         BranchOf(variable).name + ' ' + std::to_string(variable.suffix[1]) + " }\n\n";
}

// The description, and the comments that trap translators such as
// snmpttconvertmib read.
std::string TrapTexts(const Agent::TrapRow& trap) {
  const Notification& notification = NotificationOf(trap);
  std::string text = notification.sentence;
  if (*notification.more != '\0') text += std::string("\n\n        ") + notification.more;
  return "    DESCRIPTION\n        " + Quoted(text) + "\n    --#SUMMARY   " +
         Quoted(notification.sentence) + "\n    --#ARGUMENTS { }\n    --#SEVERITY  " +
         Word(notification.severity) + '\n';
}

std::string NotificationType(const Agent::TrapRow& trap) {
  return std::string("corvane") + trap.name + " NOTIFICATION-TYPE\n    STATUS      current\n" +
         TrapTexts(trap) + "    ::= { " + kEvents.name + ' ' + std::to_string(trap.specificTrap) +
         " }\n\n";
}

std::string TrapType(const Agent::TrapRow& trap) {
  return std::string("corvane") + trap.name + " TRAP-TYPE\n    ENTERPRISE  corvane\n" +
         TrapTexts(trap) + "    ::= " + std::to_string(trap.specificTrap) + "\n\n";
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
  std::string module = kV2Head + BranchLines();
  for (const Agent::VariableRow& variable : Agent::kVariables)
    module += Object(variable, kV2Spelling);
  for (const Agent::TrapRow& trap : Agent::kTraps) module += NotificationType(trap);
  module += kV2Compliance;
  module += "corvaneObjectGroup OBJECT-GROUP\n    OBJECTS {" + Members(Agent::kVariables) +
            "    STATUS      current\n    DESCRIPTION\n        \"All objects.\"\n"
            "    ::= { corvaneGroups 1 }\n\n";
  module += "corvaneNotificationGroup NOTIFICATION-GROUP\n    NOTIFICATIONS {" +
            Members(Agent::kTraps) +
            "    STATUS      current\n    DESCRIPTION\n        \"All notifications.\"\n"
            "    ::= { corvaneGroups 2 }\n\n";
  return module + "END\n";
}

std::string SmiV1Module() {
  std::string module = kV1Head + BranchLines();
  for (const Agent::VariableRow& variable : Agent::kVariables)
    module += Object(variable, kV1Spelling);
  for (const Agent::TrapRow& trap : Agent::kTraps) module += TrapType(trap);
  return module + "END\n";
}

}  // namespace Mibs
