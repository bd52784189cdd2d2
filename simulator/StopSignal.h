#pragma once

namespace Simulator {

// From now on SIGINT (Ctrl-C) and SIGTERM do not end the process but are noted.
void CatchStopSignals();

// Whether one of them has come. Any thread.
[[nodiscard]] bool StopSignalCame();

}  // namespace Simulator
