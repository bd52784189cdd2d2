#pragma once

#include <memory>
#include <string>

#include "host/ExtensionModule.h"
#include "host/Options.h"
#include "host/TrapSender.h"
#include "host/ViewHandler.h"

namespace Host {

// The host's net-snmp side: an agent of its own, or a subagent behind AgentX.
// One per process, since net-snmp's library is one per process. It reads no
// configuration of the system's and leaves nothing behind on disk.
class SnmpFront {
 public:
  SnmpFront(const Options& options, ExtensionModule& module)
      : m_options(options), m_module(module) {}
  ~SnmpFront();
  SnmpFront(const SnmpFront&) = delete;
  SnmpFront& operator=(const SnmpFront&) = delete;

  // Opens the listening address and the trap sinks, or the way to the AgentX
  // master. False, with the reason in `error`, when one of them fails.
  [[nodiscard]] bool Open(std::string& error);

  // Serves what lies under this identifier from the module. False when
  // net-snmp refuses it.
  [[nodiscard]] bool Serve(const Oid& view);

  // Answers managers and sends traps, until `stopDescriptor` is readable.
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
