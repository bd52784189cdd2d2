// Prints the management module of this build of the agent, or fills in a template
// of a file for a monitoring system.

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

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

// Both return the exit status of the program.

int Fail(const std::string& reason) {
  static_cast<void>(std::fprintf(stderr, "mib-module: %s\n", reason.c_str()));
  return 1;
}

int Print(const std::string& text) {
  const bool written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  return written ? 0 : Fail("cannot write to the standard output");
}

int PrintFilled(const std::string& file) {
  std::ifstream input(file);
  const std::string text{std::istreambuf_iterator<char>(input), {}};
  if (!input) return Fail("cannot read " + file);
  try {
    return Print(Mibs::FillTemplate(text));
  } catch (const std::exception& unknown) {
    return Fail(file + ": invalid: " + unknown.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view option = argc > 1 ? argv[1] : "";
  if (argc == 1) return Print(Mibs::SmiV2Module());
  if (argc == 2 && option == "--v1") return Print(Mibs::SmiV1Module());
  if (argc == 2 && option == "--help") return Print(kUsage);
  if (argc == 2 && option == "--version") return Print("mib-module " CORVANE_VERSION_TEXT "\n");
  if (argc == 3 && option == "--fill") return PrintFilled(argv[2]);
  static_cast<void>(std::fputs(kUsage, stderr));
  return 2;
}
