// Prints the names of the agent's variables and traps from the agent's own tables,
// one line each. Scripts and people need them to read the output of net-snmp's
// tools, which shows numbers:
//
//   variable <object identifier> LinkStatus
//   trap <specific number> TrapSoftwareLinkUp
//
// With --version it prints the version.

#include <cstdio>
#include <cstring>

#include "BuildSettings.h"
#include "agent/ObjectIdentifier.h"
#include "agent/Traps.h"
#include "agent/Variables.h"
#include "host/ExtensionModule.h"

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
    static_cast<void>(std::puts("mib-names " CORVANE_VERSION_TEXT));
    return 0;
  }
  Agent::EnterprisePrefix prefix;
  const AsnObjectIdentifier name = prefix.Name();
  const Host::Oid root(name.ids, name.ids + name.idLength);
  for (const Agent::VariableRow& row : Agent::kVariables) {
    Host::Oid oid = root;
    oid.insert(oid.end(), std::begin(row.suffix), std::end(row.suffix));
    static_cast<void>(std::printf("variable %s %s\n", Host::ToText(oid).c_str(), row.name));
  }
  for (const Agent::TrapRow& row : Agent::kTraps) {
    static_cast<void>(std::printf("trap %u %s\n", row.specificTrap, row.name));
  }
  return 0;
}
