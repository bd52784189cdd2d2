#pragma once

#include "host/NetSnmp.h"

namespace Host {

// Answers requests for names under the module's view with one call of the module
// per variable binding. The module's status becomes a status of the manager's SNMP
// version:
//
//   request  module         SNMPv1                SNMPv2c and SNMPv3
//   Get      noSuchName     noSuchName            noSuchInstance
//   GetNext  noSuchName     noSuchName, or the next agent's variable    endOfMibView, or likewise
//   Set      notWritable    noSuchName (RFC 3584) notWritable
//   any      anything else  genErr                genErr
//
// It runs on the thread that reads net-snmp's sockets.
class ViewHandler {
 public:
  ViewHandler(ExtensionModule& module, Oid view);

  // Registers with net-snmp's agent for the life of the agent, which this object
  // must outlive. False if the agent refuses the view.
  [[nodiscard]] bool Register();

 private:
  static int Handle(netsnmp_mib_handler* handler, netsnmp_handler_registration* registration,
                    netsnmp_agent_request_info* info, netsnmp_request_info* requests);

  void Answer(netsnmp_agent_request_info& info, netsnmp_request_info& request);
  void AnswerGet(netsnmp_agent_request_info& info, netsnmp_request_info& request);
  void AnswerGetNext(netsnmp_agent_request_info& info, netsnmp_request_info& request);
  void AnswerSet(netsnmp_agent_request_info& info, netsnmp_request_info& request);

  ExtensionModule& m_module;
  Oid m_view;
};

}  // namespace Host
