#pragma once

#include <string>
#include <vector>

#include "host/NetSnmp.h"

namespace Host {

// Sends traps. For one thread. Sending does not wait for a receiver.
class TrapSender {
 public:
  TrapSender() = default;
  ~TrapSender();
  TrapSender(const TrapSender&) = delete;
  TrapSender& operator=(const TrapSender&) = delete;

  // Adds a receiver of SNMPv1 traps ("127.0.0.1:1162"). False if the address is
  // bad; `error` is then the reason.
  [[nodiscard]] bool AddSink(const std::string& address, const std::string& community,
                             std::string& error);

  // Sends the trap to every sink as an SNMPv1 trap with the trap's own
  // enterprise, numbers and time stamp.
  void SendToSinks(const Trap& trap);

  // Sends the trap to the AgentX master as the notification that RFC 3584 defines
  // for an SNMPv1 trap. The master sends it to its own trap sinks.
  static void SendToMaster(const Trap& trap);

 private:
  std::vector<netsnmp_session*> m_sinks;
};

}  // namespace Host
