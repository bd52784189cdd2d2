#pragma once

#include <memory>
#include <string>

namespace Host {

// A module file in this process, and the way in which its trap event becomes
// something that a select loop can wait for. One implementation per system of
// the module: host/native for shared objects, host/winelib for Windows DLLs.
//
// Used from one thread.
class ModuleLibrary {
 public:
  // Null on failure, with the reason in `error`.
  [[nodiscard]] static std::unique_ptr<ModuleLibrary> Open(const std::string& path,
                                                           std::string& error);

  // Gives the library back; its unload hook runs before this returns.
  virtual ~ModuleLibrary() = default;

  // The export of that name; null when there is none.
  [[nodiscard]] virtual void* Find(const char* name) const = 0;

  // Starts to watch the module's trap event, which stays the module's. A file
  // descriptor that is readable once the event has been signalled, owned by
  // this object; -1 on failure.
  [[nodiscard]] virtual int Watch(void* event) = 0;

  // Makes that descriptor unreadable until the event is signalled again.
  virtual void TakeSignal() = 0;

 protected:
  ModuleLibrary() = default;
  ModuleLibrary(const ModuleLibrary&) = delete;
  ModuleLibrary& operator=(const ModuleLibrary&) = delete;
};

}  // namespace Host
