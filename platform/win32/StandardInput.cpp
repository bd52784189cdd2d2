#include "platform/StandardInput.h"

#include <windows.h>

namespace Vask::Platform {

// The run-time library's isatty takes every character device for a terminal,
// NUL too; only a console has a mode.
bool StandardInputIsTerminal() noexcept {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

}  // namespace Vask::Platform
