#pragma once

#include <string>

#include "check/Facts.h"
#include "check/Options.h"

namespace Check {

// Finds all facts on this machine. Changes nothing. Blocks for at most about 5 seconds, mostly
// while it waits for an answer of the service.
[[nodiscard]] Facts Gather(const Options& options);

// Finds the registration and the DLL only.
[[nodiscard]] Facts GatherRegistration();

// The parts of Gather.
void GatherService(Facts& facts);
void GatherSettings(Facts& facts);
void GatherAgent(Facts& facts);  // registration and DLL
void GatherLog(Facts& facts);
void GatherLink(Facts& facts);
void GatherAnswer(const Options& options, Facts& facts);
void GatherFirewall(Facts& facts);

}  // namespace Check
