#pragma once

#include <string>
#include <vector>

namespace Host {

// The machine's registry (HKEY_LOCAL_MACHINE) and file system, as far as the way
// from the SNMP service to an extension agent leads through them. The real ones
// are winelib's; tests hand in their own. All texts are UTF-8; keys are named
// below HKEY_LOCAL_MACHINE.
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

  // The names of a key's values in the registry's own order, in the 64-bit
  // view, as Read.
  [[nodiscard]] virtual std::vector<std::string> ValueNames(const std::string& key) const = 0;
  [[nodiscard]] virtual Value Read(const std::string& key, const std::string& name) const = 0;

  // The full path of a DLL, which is searched for when the path given is a bare
  // name; empty when there is no such file.
  [[nodiscard]] virtual std::string FindFile(const std::string& path) const = 0;

 protected:
  Registry() = default;
  ~Registry() = default;
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;
};

// The registry of the system that this host's modules are for; null where that
// system has none. Lives as long as the process.
[[nodiscard]] const Registry* SystemRegistry();

// Where the registration leads. The path is empty unless exactly one agent's way
// is whole. A complaint is a line for each way that is broken, and says at which
// rung; it may come with a path, since the service passes over broken ones too.
struct Registration {
  std::string name;
  std::string path;
  std::vector<std::string> complaints;
};

// Follows the registration as the Windows SNMP service does: each value of the
// service's key "ExtensionAgents" names a key, whose value "Pathname" is the
// agent's DLL. Unlike the service, the host serves one agent only: where several
// are registered it is for the user to say which.
[[nodiscard]] Registration FindRegisteredAgent(const Registry& registry);

}  // namespace Host
