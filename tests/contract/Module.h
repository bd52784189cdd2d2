#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Snmp.h"

namespace Contract {

// Where the module expects the Corvane process.
inline constexpr std::uint16_t kLinkPort = 16969;

// The built module, loaded as the SNMP service loads it, and its three entry
// points. Which file it is says the environment variable CORVANE_MODULE, or
// else the build.
//
// One thread at a time, as the contract has it. A module that cannot be loaded,
// or that lacks an export, ends the test program with the reason.
class Module {
 public:
  Module();
  ~Module() { Unload(); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // Unloads it now; its hook has run when this returns.
  void Unload();

  // As the system knows it: see Library.h.
  void* Library() const { return m_library; }

  // What SnmpExtensionInit hands out.
  struct Start {
    bool result = false;
    HANDLE trapEvent = nullptr;
    AsnObjectIdentifier view{0, nullptr};
  };
  Start Init();

  // What SnmpExtensionQuery answers, as "TRUE 0/0" for result, status, index.
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
  // One call of SnmpExtensionTrap; false when it answered FALSE.
  bool TakeTrap(Trap& trap);
  // The numbers of all traps that wait.
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
