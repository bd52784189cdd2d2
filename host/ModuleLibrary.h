#pragma once

#include <memory>
#include <string>

namespace Host {

// A module file that is loaded into this process. Watch turns its trap event into
// a descriptor that a select loop can wait for. There is one implementation for
// each kind of module: host/native for shared objects, host/winelib for Windows
// DLLs.
//
// For one thread.
class ModuleLibrary {
 public:
  // Null on failure; `error` is then the reason.
  [[nodiscard]] static std::unique_ptr<ModuleLibrary> Open(const std::string& path,
                                                           std::string& error);

  // Unloads the library: its unload hook runs before this returns.
  virtual ~ModuleLibrary() = default;

  // Returns the address of an export; null if there is none of that name.
  [[nodiscard]] virtual void* Find(const char* name) const = 0;

  // Starts to watch the module's trap event, which the module still owns. Returns
  // a file descriptor that is readable after the module has signalled the event;
  // this object owns it. -1 on failure.
  [[nodiscard]] virtual int Watch(void* event) = 0;

  // Makes the descriptor unreadable until the module signals the event again.
  virtual void TakeSignal() = 0;

 protected:
  ModuleLibrary() = default;
  ModuleLibrary(const ModuleLibrary&) = delete;
  ModuleLibrary& operator=(const ModuleLibrary&) = delete;
};

}  // namespace Host
