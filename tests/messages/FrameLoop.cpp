#include <cstdlib>
#include <iterator>

#include "messages/Registrar.h"
#include "messages/SNMPmessage.h"
#include "tests/support/UpdateFrames.h"

// Processes as many frames as the command line says, the four of an update in turn.
// count_instructions.sh counts the instructions of one frame with it.

namespace {

using Vask::Tests::kUpdateFrames;

std::size_t s_taken = 0;

void Take(const Messages::SNMPmessage&, std::int32_t, void*) {
  ++s_taken;
}

}  // namespace

int main(int count, char** arguments) {
  const std::size_t frames = count == 2 ? std::strtoul(arguments[1], nullptr, 10) : 0;
  Messages::Registrar& registrar = Messages::Registrar::Instance();
  registrar.Subscribe<Messages::SNMPmessage>(Take);
  for (std::size_t i = 0; i < frames; ++i) {
    registrar.OnJsonMessageText(kUpdateFrames[i % std::size(kUpdateFrames)]);
  }
  return s_taken == frames ? EXIT_SUCCESS : EXIT_FAILURE;
}
