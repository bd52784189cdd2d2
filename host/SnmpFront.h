#pragma once

#include <memory>
#include <string>

#include "host/ExtensionModule.h"
#include "host/Options.h"
#include "host/TrapSender.h"
#include "host/ViewHandler.h"

namespace Host {

// The host's net-snmp side: an agent, or a subagent behind AgentX. Create one per
// process, because net-snmp's library allows no more. It does not read the
// system's configuration of net-snmp and leaves no files behind.
class SnmpFront {
 public:
  SnmpFront(const Options& options, ExtensionModule& module)
      : m_options(options), m_module(module) {}
  ~SnmpFront();
  SnmpFront(const SnmpFront&) = delete;
  SnmpFront& operator=(const SnmpFront&) = delete;

  // Opens the listening address and the trap sinks, or the connection to the
  // AgentX master. False on failure; `error` is then the reason.
  [[nodiscard]] bool Open(std::string& error);

  // Serves the module's variables under this identifier. False if net-snmp refuses
  // it.
  [[nodiscard]] bool Serve(const Oid& view);

  // Answers managers and sends traps until `stopDescriptor` is readable.
  void Run(int stopDescriptor);

 private:
  [[nodiscard]] bool MakeStateFolder(std::string& error);
  [[nodiscard]] bool IsSubagent() const { return !m_options.agentxSocket.empty(); }
  void PrepareLibrary();
  void GrantAccess();
  void SendTraps();

  const Options& m_options;
  ExtensionModule& m_module;
  TrapSender m_traps;
  std::unique_ptr<ViewHandler> m_handler;
  std::string m_stateFolder;
  bool m_initialised = false;
};

}  // namespace Host
