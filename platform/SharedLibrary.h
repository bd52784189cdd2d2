#pragma once

#include <string>

#include "platform/Threading.h"

namespace Vask::Platform {

// Modules that are loaded while the program runs. The agent loads none; its
// native host does. May be called from any thread.

// Loads the file at this path (never from the system's library folders); all
// its symbols are bound at once and are not offered to others. Null on
// failure, with the system's reason in `error`.
[[nodiscard]] NativeHandle OpenSharedLibrary(const std::string& path, std::string& error);

// The address of an exported symbol; null when there is none of that name.
[[nodiscard]] void* FindInSharedLibrary(NativeHandle library, const char* name) noexcept;

// Unloads it; its unload hook runs before this returns.
void CloseSharedLibrary(NativeHandle library) noexcept;

}  // namespace Vask::Platform
