#include "host/SnmpFront.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Host {
namespace {

constexpr const char kApplication[] = "snmphost";

// cppcheck-suppress passedByValue ; netsnmp_config needs a text that it may change
void Configure(std::string line) {
  netsnmp_config(line.data());
}

}  // namespace

bool SnmpFront::Open(std::string& error) {
  if (!MakeStateFolder(error)) return false;
  PrepareLibrary();
  if (init_agent(kApplication) != 0) {
    error = "net-snmp's agent library does not start";
    return false;
  }
  m_initialised = true;
  if (!IsSubagent()) GrantAccess();
  init_snmp(kApplication);
  if (IsSubagent()) return true;
  if (init_master_agent() != 0) {
    error = "cannot listen on " + m_options.listen + " (is another program using it?)";
    return false;
  }
  for (const std::string& sink : m_options.trapSinks) {
    if (!m_traps.AddSink(sink, m_options.community, error)) {
      error = "cannot send traps to " + sink + ": " + error;
      return false;
    }
  }
  return true;
}

// net-snmp keeps an index of certificates with its persistent data. A separate
// folder keeps that out of the system's. The index's folder is created here,
// because net-snmp reports it if it creates the folder itself.
bool SnmpFront::MakeStateFolder(std::string& error) {
  std::error_code code;
  std::string folder = (std::filesystem::temp_directory_path(code) / "snmphost-XXXXXX").string();
  if (code || mkdtemp(folder.data()) == nullptr) {
    error = "cannot create a folder for temporary files";
    return false;
  }
  m_stateFolder = folder;
  std::filesystem::create_directory(folder + "/cert_indexes", code);
  netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, folder.c_str());
  return true;
}

void SnmpFront::PrepareLibrary() {
  snmp_enable_stderrlog();
  // This host shows numbers only, so it needs no MIB files.
  setenv("MIBS", "", 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_ALARM_DONT_USE_SIG, 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS,
                         1);
  // Otherwise the library opens TCP port 199 for an old protocol, and complains if
  // another agent of this machine has the port.
  char leftOut[] = "-smux";
  add_to_init_list(leftOut);
  if (IsSubagent()) {
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 1);
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET,
                          m_options.agentxSocket.c_str());
  } else {
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS,
                          m_options.listen.c_str());
  }
}

void SnmpFront::GrantAccess() {
  Configure("rwcommunity " + m_options.community);
  if (m_options.user.empty()) return;
  Configure("createUser " + m_options.user + " SHA " + m_options.passPhrase + " AES");
  Configure("rwuser " + m_options.user);
}

bool SnmpFront::Serve(const Oid& view) {
  m_handler = std::make_unique<ViewHandler>(m_module, view);
  return m_handler->Register();
}

void SnmpFront::Run(int stopDescriptor) {
  const int trapDescriptor = m_module.TrapDescriptor();
  // The module may have queued traps during its start.
  SendTraps();
  for (;;) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(stopDescriptor, &readable);
    int count = stopDescriptor + 1;
    if (trapDescriptor >= 0) {
      FD_SET(trapDescriptor, &readable);
      count = std::max(count, trapDescriptor + 1);
    }
    timeval wait{};
    int forEver = 1;
    snmp_select_info(&count, &readable, &wait, &forEver);
    const int ready = select(count, &readable, nullptr, nullptr, forEver != 0 ? nullptr : &wait);
    if (ready > 0) {
      if (FD_ISSET(stopDescriptor, &readable)) return;
      if (trapDescriptor >= 0 && FD_ISSET(trapDescriptor, &readable)) SendTraps();
      snmp_read(&readable);
    } else if (ready == 0) {
      snmp_timeout();
    }
    run_alarms();
    netsnmp_check_outstanding_agent_requests();
  }
}

void SnmpFront::SendTraps() {
  m_module.TakeTrapSignal();
  Trap trap;
  while (m_module.NextTrap(trap)) {
    if (IsSubagent()) {
      TrapSender::SendToMaster(trap);
    } else {
      m_traps.SendToSinks(trap);
    }
  }
}

SnmpFront::~SnmpFront() {
  if (m_initialised) {
    snmp_shutdown(kApplication);
    shutdown_agent();
  }
  std::error_code ignored;  // the remaining files are temporary
  if (!m_stateFolder.empty()) std::filesystem::remove_all(m_stateFolder, ignored);
}

}  // namespace Host
