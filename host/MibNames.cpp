// Prints the names of the agent's variables and traps from the agent's own tables.
// Scripts and people need them to read the output of net-snmp's tools, which shows
// numbers.

#include <cstdio>
#include <string_view>

#include "BuildSettings.h"
#include "agent/ObjectIdentifier.h"
#include "agent/Traps.h"
#include "agent/Variables.h"
#include "host/ExtensionModule.h"

namespace {

constexpr char kUsage[] =
    "Usage: mib-names [--help | --version]\n"
    "\n"
    "Prints a line for each variable and each trap of the agent:\n"
    "\n"
    "  variable <object identifier> LinkStatus\n"
    "  trap <specific number> TrapSoftwareLinkUp\n"
    "\n"
    "  --help     print this text\n"
    "  --version  print the version\n"
    "\n"
    "The exit status is 0, or 2 if an argument is wrong.\n";

void PrintNames() {
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
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view option = argc == 2 ? argv[1] : "";
  if (argc == 1) {
    PrintNames();
  } else if (option == "--help") {
    static_cast<void>(std::fputs(kUsage, stdout));
  } else if (option == "--version") {
    static_cast<void>(std::puts("mib-names " CORVANE_VERSION_TEXT));
  } else {
    static_cast<void>(std::fputs(kUsage, stderr));
    return 2;
  }
  return 0;
}
