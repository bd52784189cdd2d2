#pragma once

#include <string>
#include <vector>

#include "host/NetSnmp.h"

namespace Host {

// Where traps go. Used from one thread; sending does not wait for anybody.
class TrapSender {
 public:
  TrapSender() = default;
  ~TrapSender();
  TrapSender(const TrapSender&) = delete;
  TrapSender& operator=(const TrapSender&) = delete;

  // Adds a receiver of SNMPv1 traps ("127.0.0.1:1162"). False, with the reason
  // in `error`, when the address is none.
  [[nodiscard]] bool AddSink(const std::string& address, const std::string& community,
                             std::string& error);

  // Sends the trap to every sink as an SNMPv1 trap with the trap's own
  // enterprise, numbers and time stamp.
  void SendToSinks(const Trap& trap);

  // Hands the trap to the AgentX master as the notification that RFC 3584
  // makes of an SNMPv1 trap; the master's own trap sinks say what becomes of it.
  static void SendToMaster(const Trap& trap);

 private:
  std::vector<netsnmp_session*> m_sinks;
};

}  // namespace Host
