#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/ExtensionModule.h"
#include "host/Options.h"
#include "host/TrapSender.h"
#include "host/ViewHandler.h"
#include "host/WaitingTraps.h"

namespace Host {

// The host's net-snmp side: an agent, or a subagent behind AgentX. Create one per
// process, because net-snmp's library allows no more. It does not read the
// system's configuration of net-snmp and leaves no files behind.
class SnmpFront {
 public:
  explicit SnmpFront(const Options& options) : m_options(options) {}
  ~SnmpFront();
  SnmpFront(const SnmpFront&) = delete;
  SnmpFront& operator=(const SnmpFront&) = delete;

  // Opens the listening addresses and the trap sinks, or the connection to the
  // AgentX master. False on failure; `error` is then the reason.
  [[nodiscard]] bool Open(std::string& error);

  // Serves the module's variables under this identifier. False if net-snmp refuses
  // it. The module must outlive this object.
  [[nodiscard]] bool Serve(ExtensionModule& module, const Oid& view);

  // Answers managers and sends the module's traps until `stopDescriptor` is readable.
  void Run(ExtensionModule& module, int stopDescriptor);

 private:
  [[nodiscard]] bool Initialise(std::string& error);
  [[nodiscard]] bool Listen(const std::string& address, std::string& error);
  [[nodiscard]] bool IsSubagent() const { return !m_options.agentxSocket.empty(); }
  void PrepareLibrary();
  void GrantAccess();
  void TakeTraps(ExtensionModule& module);
  void SendOneToMaster();

  const Options& m_options;
  TrapSender m_traps;
  WaitingTraps m_waiting;
  std::vector<std::string> m_socketFiles;
  std::unique_ptr<ViewHandler> m_handler;
  bool m_initialised = false;
};

}  // namespace Host
