// Prints the management module of this build of the agent, or fills in a template
// of a file for a monitoring system.

#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>

#include "BuildSettings.h"
#include "mibs/Module.h"
#include "mibs/Template.h"

namespace {

constexpr char kUsage[] =
    "usage: mib-module [--v1 | --fill TEMPLATE | --help | --version]\n"
    "\n"
    "Prints the management module with the enterprise number of this build:\n"
    "VELTRIN-CORVANE-MIB (SMIv2), or with --v1 VELTRIN-CORVANE-V1-MIB (SMIv1).\n"
    "With --fill, fills in names and numbers of the agent in the file TEMPLATE and\n"
    "prints the result.\n";

int PrintFilled(const char* file) {
  std::ifstream input(file);
  const std::string text{std::istreambuf_iterator<char>(input), {}};
  if (!input) {
    std::fprintf(stderr, "mib-module: cannot read %s\n", file);
    return 1;
  }
  try {
    std::fputs(Mibs::FillTemplate(text).c_str(), stdout);
  } catch (const std::exception& unknown) {
    std::fprintf(stderr, "mib-module: %s: invalid: %s\n", file, unknown.what());
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const char* option = argc == 2 ? argv[1] : "";
  if (argc == 3 && std::strcmp(argv[1], "--fill") == 0) return PrintFilled(argv[2]);
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
