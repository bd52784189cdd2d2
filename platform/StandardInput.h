#pragma once

namespace Vask::Platform {

// Whether somebody types at standard input, as opposed to a file or a pipe.
[[nodiscard]] bool StandardInputIsTerminal() noexcept;

}  // namespace Vask::Platform
