#pragma once

namespace Hostile {

// Puts functions between a module that has just been loaded and the system, in
// the places where the loader has written what the module imports: they fail as
// g_faultSwitch says, and else do what they stand for. So the module can meet
// any fault as it is, and nobody else of this process meets one. To be called
// before the module has threads; the functions go with it. Ends the program,
// with the reason, when the module imports something else than is known here.
void PutFaultyImports(void* library);

}  // namespace Hostile
