#include "host/ViewHandler.h"

#include <utility>

namespace Host {
namespace {

// The highest error status that SNMPv2 knows (inconsistentName).
constexpr ErrorStatus kLastErrorStatus = 18;

Oid NameOf(const netsnmp_request_info& request) {
  return FromNetSnmp(request.requestvb->name, request.requestvb->name_length);
}

void Refuse(netsnmp_agent_request_info& info, netsnmp_request_info& request, int error) {
  netsnmp_set_request_error(&info, &request, error);
}

}  // namespace

ViewHandler::ViewHandler(ExtensionModule& module, Oid view)
    : m_module(module), m_view(std::move(view)) {}

bool ViewHandler::Register() {
  const std::vector<oid> root = ToNetSnmp(m_view);
  // Writable for net-snmp, because the module decides whether a variable can be
  // set.
  netsnmp_handler_registration* const registration = netsnmp_create_handler_registration(
      "snmphost", &ViewHandler::Handle, root.data(), root.size(), HANDLER_CAN_RWRITE);
  if (registration == nullptr) return false;
  registration->handler->myvoid = this;
  return netsnmp_register_handler(registration) == MIB_REGISTERED_OK;
}

int ViewHandler::Handle(netsnmp_mib_handler* handler, netsnmp_handler_registration*,
                        netsnmp_agent_request_info* info, netsnmp_request_info* requests) {
  auto* const self = static_cast<ViewHandler*>(handler->myvoid);
  for (netsnmp_request_info* request = requests; request != nullptr; request = request->next) {
    if (request->processed == 0) self->Answer(*info, *request);
    // After a refusal, the rest of a Set is not tried.
    if (info->mode == MODE_SET_ACTION && request->status != SNMP_ERR_NOERROR) break;
  }
  return SNMP_ERR_NOERROR;
}

void ViewHandler::Answer(netsnmp_agent_request_info& info, netsnmp_request_info& request) {
  switch (info.mode) {
    case MODE_GET:
      return AnswerGet(info, request);
    case MODE_GETNEXT:
      return AnswerGetNext(info, request);
    case MODE_SET_ACTION:
      // The contract has one step, net-snmp has six. At this one, all other agents
      // have had their chance to refuse the request.
      return AnswerSet(info, request);
    default:
      return;
  }
}

void ViewHandler::AnswerGet(netsnmp_agent_request_info& info, netsnmp_request_info& request) {
  Binding binding{NameOf(request), {}};
  const ErrorStatus status = m_module.Query(PduType::Get, binding);
  if (status == kNoSuchName) return Refuse(info, request, SNMP_NOSUCHINSTANCE);
  if (status != kNoError || !StoreValue(*request.requestvb, binding.value)) {
    Refuse(info, request, SNMP_ERR_GENERR);
  }
}

void ViewHandler::AnswerGetNext(netsnmp_agent_request_info& info, netsnmp_request_info& request) {
  const Oid asked = NameOf(request);
  Binding binding{asked, {}};
  const ErrorStatus status = m_module.Query(PduType::GetNext, binding);
  // Without an answer net-snmp asks the agent after this view.
  if (status == kNoSuchName || (status == kNoError && !IsUnder(binding.name, m_view))) return;
  // A walk over names that do not ascend would never end.
  if (status != kNoError || binding.name <= asked) return Refuse(info, request, SNMP_ERR_GENERR);
  const std::vector<oid> name = ToNetSnmp(binding.name);
  snmp_set_var_objid(request.requestvb, name.data(), name.size());
  if (!StoreValue(*request.requestvb, binding.value)) Refuse(info, request, SNMP_ERR_GENERR);
}

void ViewHandler::AnswerSet(netsnmp_agent_request_info& info, netsnmp_request_info& request) {
  Binding binding{NameOf(request), LoadValue(*request.requestvb)};
  const ErrorStatus status = m_module.Query(PduType::Set, binding);
  if (status == kNoError) return;
  Refuse(info, request, status > kNoError && status <= kLastErrorStatus ? status : SNMP_ERR_GENERR);
}

}  // namespace Host
