#include "host/SnmpFront.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace Host {
namespace {

constexpr const char kApplication[] = "snmphost";
constexpr std::string_view kUnixSocket = "unix:";

// How often a subagent looks whether its master is there. net-snmp's own 15 seconds would
// delay the traps that wait.
constexpr int kMasterCheckSeconds = 5;

// cppcheck-suppress passedByValue ; netsnmp_config needs a text that it may change
void Configure(std::string line) {
  netsnmp_config(line.data());
}

// A folder that lives as long as this object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::error_code code;
    std::string path = (std::filesystem::temp_directory_path(code) / "snmphost-XXXXXX").string();
    if (!code && mkdtemp(path.data()) != nullptr) m_path = path;
  }
  ~TemporaryFolder() {
    std::error_code ignored;  // what remains is temporary
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Empty if the folder could not be created.
  [[nodiscard]] const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

// Returns why the library could not listen there. `code` is the system's error, if there
// was one: it is 0, or comes from the search for a host's name, if the address is bad.
std::string WhyNot(const std::string& address, int code) {
  const bool isPath = address.starts_with(kUnixSocket);
  if (code == EADDRINUSE) return "another program is using the address";
  if (code == EADDRNOTAVAIL || code == EACCES || (isPath && code != 0)) {
    return std::generic_category().message(code);
  }
  return "the address is malformed, or its host is unknown";
}

void Log(const std::string& line) {
  if (!line.empty()) snmp_log(LOG_WARNING, "snmphost: %s\n", line.c_str());
}

// net-snmp calls one of these when the connection to the AgentX master is there, and the
// other when it is lost.
int OnMasterArrives(int, int, void*, void* waiting) {
  Log(static_cast<WaitingTraps*>(waiting)->MasterArrives());
  return 0;
}

int OnMasterLeaves(int, int, void*, void* waiting) {
  static_cast<WaitingTraps*>(waiting)->MasterLeaves();
  return 0;
}

struct MasterEvent {
  int number;
  SNMPCallback* callback;
};
constexpr MasterEvent kMasterEvents[] = {{SNMPD_CALLBACK_INDEX_START, &OnMasterArrives},
                                         {SNMPD_CALLBACK_INDEX_STOP, &OnMasterLeaves}};
constexpr int kMatchArgument = 1;

}  // namespace

bool SnmpFront::Open(std::string& error) {
  if (!Initialise(error)) return false;
  for (const std::string& address : m_options.listen) {
    if (!Listen(address, error)) return false;
  }
  for (const std::string& sink : m_options.trapSinks) {
    if (!m_traps.AddSink(sink, m_options.communities.front(), error)) {
      error.insert(0, "cannot send traps to " + sink + ": ");
      return false;
    }
  }
  return true;
}

bool SnmpFront::Initialise(std::string& error) {
  // net-snmp keeps an index of certificates with its persistent data. A folder that lives
  // only during the start keeps that out of the system's. The index's folder is created
  // here, because net-snmp reports it if it creates the folder itself.
  const TemporaryFolder folder;
  std::error_code code;
  if (folder.Path().empty() ||
      !std::filesystem::create_directory(folder.Path() + "/cert_indexes", code)) {
    error = "cannot create a folder for temporary files";
    return false;
  }
  netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR,
                        folder.Path().c_str());
  PrepareLibrary();
  if (init_agent(kApplication) != 0) {
    error = "net-snmp's agent library does not start";
    return false;
  }
  m_initialised = true;
  if (IsSubagent()) {
    Configure("agentXPingInterval " + std::to_string(kMasterCheckSeconds));
  } else {
    GrantAccess();
  }
  init_snmp(kApplication);
  return true;
}

// The library's own function for this opens all addresses at once, and does not tell which
// one failed and why.
bool SnmpFront::Listen(const std::string& address, std::string& error) {
  errno = 0;
  netsnmp_transport* const transport = netsnmp_transport_open_server("snmp", address.c_str());
  const int code = errno;
  if (transport == nullptr) {
    error = "cannot listen on " + address + ": " + WhyNot(address, code);
    return false;
  }
  if (address.starts_with(kUnixSocket)) m_socketFiles.push_back(address.substr(kUnixSocket.size()));
  // On success the library owns the transport.
  if (netsnmp_register_agent_nsap(transport) != 0) return true;
  error = "cannot listen on " + address + ": net-snmp's agent library refuses it";
  return false;
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
  if (!IsSubagent()) return;
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 1);
  netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET,
                        m_options.agentxSocket.c_str());
  for (const MasterEvent& event : kMasterEvents) {
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, event.number, event.callback, &m_waiting);
  }
}

void SnmpFront::GrantAccess() {
  // The short form "rwcommunity" holds for IPv4 only.
  for (const std::string& community : m_options.communities) {
    for (const char* const family : {"com2sec", "com2sec6", "com2secunix"}) {
      Configure(std::string(family) + " managers default " + community);
    }
  }
  Configure("group managers v1 managers");
  Configure("group managers v2c managers");
  Configure("view everything included .1");
  Configure("access managers \"\" any noauth exact everything everything none");
  if (m_options.user.empty()) return;
  Configure("createUser " + m_options.user + " SHA " + m_options.passPhrase + " AES");
  Configure("rwuser " + m_options.user);
}

bool SnmpFront::Serve(ExtensionModule& module, const Oid& view) {
  m_handler = std::make_unique<ViewHandler>(module, view);
  return m_handler->Register();
}

void SnmpFront::Run(ExtensionModule& module, int stopDescriptor) {
  const int trapDescriptor = module.TrapDescriptor();
  // The module may have queued traps during its start.
  TakeTraps(module);
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
    if (m_waiting.CanSend()) {
      wait = {};
      forEver = 0;
    }
    const int ready = select(count, &readable, nullptr, nullptr, forEver != 0 ? nullptr : &wait);
    if (ready > 0) {
      if (FD_ISSET(stopDescriptor, &readable)) break;
      if (trapDescriptor >= 0 && FD_ISSET(trapDescriptor, &readable)) TakeTraps(module);
      snmp_read(&readable);
    } else if (ready == 0) {
      snmp_timeout();
    }
    run_alarms();
    netsnmp_check_outstanding_agent_requests();
    SendOneToMaster();
  }
  while (m_waiting.CanSend()) SendOneToMaster();
  Log(m_waiting.AtEnd());
}

void SnmpFront::TakeTraps(ExtensionModule& module) {
  module.TakeTrapSignal();
  Trap trap;
  while (module.NextTrap(trap)) {
    if (IsSubagent()) {
      Log(m_waiting.Add(std::move(trap)));
    } else {
      m_traps.SendToSinks(trap);
    }
  }
}

// One at a time: between two traps, Run reads what the master has sent. It learns so that
// the master is gone, and neither side waits for the other to read.
void SnmpFront::SendOneToMaster() {
  if (m_waiting.CanSend()) TrapSender::SendToMaster(m_waiting.Take());
}

SnmpFront::~SnmpFront() {
  if (!m_initialised) return;
  // The library would free the argument.
  for (const MasterEvent& event : kMasterEvents) {
    snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, event.number, event.callback, &m_waiting,
                             kMatchArgument);
  }
  snmp_shutdown(kApplication);
  shutdown_agent();
  // net-snmp leaves the file of a Unix socket behind if a manager has connected.
  std::error_code ignored;
  for (const std::string& file : m_socketFiles) std::filesystem::remove(file, ignored);
}

}  // namespace Host
