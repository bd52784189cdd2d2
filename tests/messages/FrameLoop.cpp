#include <cstdlib>

#include "messages/Registrar.h"
#include "messages/SNMPmessage.h"
#include "tests/support/UpdateFrames.h"

// Takes the four frames of an update as often as the command line says, so that
// count_instructions.sh can tell what one costs.

namespace {

int s_taken = 0;

void Take(const Messages::SNMPmessage&, std::int32_t, void*) {
  ++s_taken;
}

}  // namespace

int main(int count, char** arguments) {
  const int rounds = count == 2 ? std::atoi(arguments[1]) : 0;
  Messages::Registrar& registrar = Messages::Registrar::Instance();
  registrar.Subscribe<Messages::SNMPmessage>(Take);
  for (int i = 0; i < rounds; ++i) {
    for (const char* frame : Vask::Tests::kUpdateFrames) registrar.OnJsonMessageText(frame);
  }
  return s_taken == 4 * rounds ? EXIT_SUCCESS : EXIT_FAILURE;
}
