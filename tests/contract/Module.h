#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Snmp.h"

namespace Contract {

// The port on which the module expects the Corvane process.
inline constexpr std::uint16_t kLinkPort = 16969;

// The built module, loaded as the SNMP service loads it, and its three entry points.
// The environment variable CORVANE_MODULE names the file; without it, it is the file
// of this build.
//
// One thread at a time, as the service calls it. If the module cannot be loaded or
// lacks an export, the test program prints the reason and ends.
class Module {
 public:
  Module();
  ~Module() { Unload(); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // Unloads the module. Its hook has run when this returns.
  void Unload();

  // The handle of LoadLibraryFile.
  void* Library() const { return m_library; }

  // The result and the output parameters of SnmpExtensionInit.
  struct Start {
    bool result = false;
    HANDLE trapEvent = nullptr;
    AsnObjectIdentifier view{0, nullptr};
  };
  Start Init();

  // Result, status and index of SnmpExtensionQuery, as "TRUE 0/0".
  std::string Query(BYTE pduType, std::vector<SnmpVarBind>& bindings);

  // One binding by Get or GetNext: "status name = value", see Tests::Binding.
  std::string Get(const std::string& name);
  std::string GetNext(const std::string& name);

  struct Trap {
    std::string enterprise;  // short
    std::int32_t generic = 0;
    std::int32_t specific = 0;
    std::uint32_t timeStamp = 0;
    UINT bindings = 0;
  };
  // Calls SnmpExtensionTrap once. False if that returned FALSE.
  bool TakeTrap(Trap& trap);
  // Takes all traps that wait and returns their numbers.
  std::vector<std::int32_t> TakeTraps();

  static std::string Path();

 private:
  std::string Ask(BYTE pduType, const std::string& name);

  void* m_library = nullptr;
  void* m_init = nullptr;
  void* m_query = nullptr;
  void* m_trap = nullptr;
};

}  // namespace Contract
