#pragma once

#include <string>
#include <vector>

namespace Host {

// The parts of the registry (HKEY_LOCAL_MACHINE) and the file system that the
// SNMP service reads to find an extension agent. The winelib host reads the real
// ones; tests pass their own. All texts are UTF-8. Names of keys are relative to
// HKEY_LOCAL_MACHINE.
class Registry {
 public:
  // A 32-bit program sees another SOFTWARE key than a 64-bit one.
  enum class View { Bits64, Bits32 };

  enum class ValueKind { Missing, NotText, Text };
  struct Value {
    ValueKind kind = ValueKind::Missing;
    std::string text;  // of a REG_SZ, or of a REG_EXPAND_SZ with its %names% replaced
  };

  [[nodiscard]] virtual bool HasKey(const std::string& key, View view) const = 0;

  // Both read the 64-bit view. ValueNames returns the names of a key's values in
  // the registry's own order.
  [[nodiscard]] virtual std::vector<std::string> ValueNames(const std::string& key) const = 0;
  [[nodiscard]] virtual Value Read(const std::string& key, const std::string& name) const = 0;

  // Returns the full path of a DLL; empty if there is no such file. Searches for
  // the DLL if the path is a bare name.
  [[nodiscard]] virtual std::string FindFile(const std::string& path) const = 0;

 protected:
  Registry() = default;
  ~Registry() = default;
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;
};

// The registry of the system that this host's modules are for; null if that
// system has none. The object lives as long as the process.
[[nodiscard]] const Registry* SystemRegistry();

// The result of the search. The path is empty unless exactly one registration is
// complete. There is one complaint, a line, for each broken registration; it names
// the broken step. There may be complaints beside a path, because the service skips
// broken registrations, too.
struct Registration {
  std::string name;
  std::string path;
  std::vector<std::string> complaints;
};

// Follows the registrations as the Windows SNMP service does: each value of the
// service's key "ExtensionAgents" names a key, whose value "Pathname" is the
// agent's DLL. Unlike the service, the host serves one agent only. If several are
// registered, the user must name one.
[[nodiscard]] Registration FindRegisteredAgent(const Registry& registry);

}  // namespace Host
