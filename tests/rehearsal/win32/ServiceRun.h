#pragma once

#include <filesystem>

#include "tests/rehearsal/win32/Report.h"

namespace Rehearsal {

// Installs the package, asks the SNMP service of this machine, and removes everything again.
// WhyNoService must have returned an empty text. Prints and counts each step.
void RunWithService(const std::filesystem::path& root, const std::filesystem::path& results,
                    Report& report);

}  // namespace Rehearsal
