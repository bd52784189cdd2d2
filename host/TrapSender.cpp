#include "host/TrapSender.h"

#include <cstring>
#include <memory>

namespace Host {
namespace {

struct FreeVariables {
  void operator()(netsnmp_variable_list* list) const { snmp_free_varbind(list); }
};
using Variables = std::unique_ptr<netsnmp_variable_list, FreeVariables>;

// Adds the trap's bindings to a list, without a value if StoreValue fails.
void AppendBindings(netsnmp_variable_list*& list, const Trap& trap) {
  for (const Binding& binding : trap.bindings) {
    const std::vector<oid> name = ToNetSnmp(binding.name);
    netsnmp_variable_list* const variable =
        snmp_varlist_add_variable(&list, name.data(), name.size(), ASN_NULL, nullptr, 0);
    if (variable != nullptr) static_cast<void>(StoreValue(*variable, binding.value));
  }
}

// Returns the trap's PDU; null if there is no memory.
netsnmp_pdu* MakePdu(const Trap& trap) {
  netsnmp_pdu* const pdu = snmp_pdu_create(SNMP_MSG_TRAP);
  if (pdu == nullptr) return nullptr;
  const std::vector<oid> enterprise = ToNetSnmp(trap.enterprise);
  // The PDU owns its enterprise, and frees it with free.
  pdu->enterprise = snmp_duplicate_objid(enterprise.data(), enterprise.size());
  pdu->enterprise_length = enterprise.size();
  pdu->trap_type = trap.generic;
  pdu->specific_type = trap.specific;
  pdu->time = trap.timeStamp;
  const in_addr_t address = get_myaddr();
  std::memcpy(pdu->agent_addr, &address, sizeof(pdu->agent_addr));
  AppendBindings(pdu->variables, trap);
  return pdu;
}

constexpr oid kSysUpTime[] = {1, 3, 6, 1, 2, 1, 1, 3, 0};
constexpr oid kSnmpTrapOid[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
constexpr oid kSnmpTrapEnterprise[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 3, 0};

template <std::size_t Length>
void AppendOid(netsnmp_variable_list*& list, const oid (&name)[Length],
               const std::vector<oid>& value) {
  snmp_varlist_add_variable(&list, name, Length, ASN_OBJECT_ID, value.data(),
                            value.size() * sizeof(oid));
}

}  // namespace

TrapSender::~TrapSender() {
  for (netsnmp_session* const sink : m_sinks) snmp_close(sink);
}

bool TrapSender::AddSink(const std::string& address, const std::string& community,
                         std::string& error) {
  // net-snmp copies both texts; only its structure lacks the const.
  std::string peer = address;
  std::string secret = community;
  netsnmp_session wanted;
  snmp_sess_init(&wanted);
  wanted.version = SNMP_VERSION_1;
  wanted.peername = peer.data();
  wanted.community = reinterpret_cast<u_char*>(secret.data());
  wanted.community_len = secret.size();
  netsnmp_session* const sink = snmp_open(&wanted);
  if (sink == nullptr) {
    error = snmp_api_errstring(snmp_errno);
    return false;
  }
  m_sinks.push_back(sink);
  return true;
}

void TrapSender::SendToSinks(const Trap& trap) {
  for (netsnmp_session* const sink : m_sinks) {
    netsnmp_pdu* const pdu = MakePdu(trap);
    // On success net-snmp owns the PDU.
    if (pdu != nullptr && snmp_send(sink, pdu) == 0) {
      snmp_sess_perror("snmphost: trap", sink);
      snmp_free_pdu(pdu);
    }
  }
}

void TrapSender::SendToMaster(const Trap& trap) {
  const std::vector<oid> enterprise = ToNetSnmp(trap.enterprise);
  // RFC 3584, section 3.1: enterprise, 0, specific.
  std::vector<oid> notification = enterprise;
  notification.push_back(0);
  notification.push_back(static_cast<oid>(trap.specific));

  netsnmp_variable_list* list = nullptr;
  const long timeStamp = static_cast<long>(trap.timeStamp);
  snmp_varlist_add_variable(&list, kSysUpTime, std::size(kSysUpTime), ASN_TIMETICKS, &timeStamp,
                            sizeof(timeStamp));
  AppendOid(list, kSnmpTrapOid, notification);
  AppendBindings(list, trap);
  AppendOid(list, kSnmpTrapEnterprise, enterprise);
  const Variables owned(list);
  send_v2trap(owned.get());
}

}  // namespace Host
