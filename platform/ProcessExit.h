#pragma once

namespace Vask::Platform {

// What the module knows of its own end. Two ends exist: the module is unloaded
// and the process goes on (all of the module's threads are joined first, then
// everything is destroyed), or the process ends (nothing is destroyed: on
// Windows the other threads were killed wherever they stood, elsewhere they may
// still run).

// True from the moment the module hook learned that the process ends and that
// every thread but the calling one is gone. Never reset. Any thread.
bool ProcessIsExiting() noexcept;

// Called by the module hook only.
void MarkProcessExiting() noexcept;

}  // namespace Vask::Platform
