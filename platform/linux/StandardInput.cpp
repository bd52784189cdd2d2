#include "platform/StandardInput.h"

#include <unistd.h>

namespace Vask::Platform {

bool StandardInputIsTerminal() noexcept {
  return isatty(STDIN_FILENO) != 0;
}

}  // namespace Vask::Platform
