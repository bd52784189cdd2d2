// Prints the management module that goes with this build of the agent.

#include <cstdio>
#include <cstring>

#include "BuildSettings.h"
#include "mibs/Module.h"

namespace {

constexpr char kUsage[] =
    "usage: mib-module [--v1 | --help | --version]\n"
    "\n"
    "Prints VELTRIN-CORVANE-MIB (SMIv2), or with --v1 VELTRIN-CORVANE-V1-MIB\n"
    "(SMIv1), for the enterprise number that this build was made with.\n";

}  // namespace

int main(int argc, char** argv) {
  const char* option = argc == 2 ? argv[1] : "";
  if (argc == 1) {
    std::fputs(Mibs::SmiV2Module().c_str(), stdout);
  } else if (std::strcmp(option, "--v1") == 0) {
    std::fputs(Mibs::SmiV1Module().c_str(), stdout);
  } else if (std::strcmp(option, "--help") == 0) {
    std::fputs(kUsage, stdout);
  } else if (std::strcmp(option, "--version") == 0) {
    std::puts("mib-module " CORVANE_VERSION_TEXT);
  } else {
    std::fputs(kUsage, stderr);
    return 2;
  }
  return 0;
}
