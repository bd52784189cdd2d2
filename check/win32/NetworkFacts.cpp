// The link's sockets, and the service's answer to a request.

#include "check/win32/System.h"

#include <iphlpapi.h>
#include <tlhelp32.h>
#include <ws2tcpip.h>

#include <map>

#include "agent/AgentProcess.h"
#include "check/Verdicts.h"
#include "check/win32/Gather.h"

namespace Check {
namespace {

constexpr int kTries = 2;
constexpr ULONGLONG kWaitMs = 2000;

std::map<DWORD, std::string> ProcessNames() {
  std::map<DWORD, std::string> names;
  const UniqueSystemHandle snapshot = Own(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot.Valid()) return names;
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more;
       more = Process32NextW(snapshot.Get(), &entry)) {
    names[entry.th32ProcessID] = Narrow(entry.szExeFile);
  }
  return names;
}

std::string AddressText(int family, const void* address) {
  char text[INET6_ADDRSTRLEN] = "";
  inet_ntop(family, address, text, sizeof text);
  return text;
}

// Returns the table of all TCP sockets of a family. Empty, with the error set, if it cannot be
// read.
std::vector<std::max_align_t> ReadTable(ULONG family, DWORD& error) {
  std::vector<std::max_align_t> table;
  DWORD size = 0;
  do {
    table.resize(size / sizeof(std::max_align_t) + 1);
    size = static_cast<DWORD>(table.size() * sizeof(std::max_align_t));
    error = GetExtendedTcpTable(table.data(), &size, FALSE, family, TCP_TABLE_OWNER_PID_ALL, 0);
  } while (error == ERROR_INSUFFICIENT_BUFFER);
  return table;
}

u_short PortOf(DWORD networkOrder) {
  return ntohs(static_cast<u_short>(networkOrder & 0xFFFF));
}

// The address, the state and the owner of one IPv4 row, if it belongs to the link.
void TakeRow(const MIB_TCPROW_OWNER_PID& row, LinkFacts& link) {
  const TcpSocket socket{AddressText(AF_INET, &row.dwLocalAddr), row.dwOwningPid, {}};
  if (row.dwState == MIB_TCP_STATE_LISTEN &&
      PortOf(row.dwLocalPort) == Agent::AgentProcess::kLinkPort) {
    link.listeners.push_back(socket);
  }
  if (row.dwState == MIB_TCP_STATE_ESTAB &&
      PortOf(row.dwRemotePort) == Agent::AgentProcess::kLinkPort &&
      row.dwRemoteAddr == htonl(INADDR_LOOPBACK)) {
    link.connections.push_back(socket);
  }
}

DWORD ReadSockets(LinkFacts& link) {
  DWORD error = ERROR_SUCCESS;
  const auto four = ReadTable(AF_INET, error);
  if (error != NO_ERROR) return error;
  const auto& table = *reinterpret_cast<const MIB_TCPTABLE_OWNER_PID*>(four.data());
  for (DWORD i = 0; i < table.dwNumEntries; ++i) TakeRow(table.table[i], link);

  const auto six = ReadTable(AF_INET6, error);
  if (error != NO_ERROR) return NO_ERROR;  // a machine without IPv6
  const auto& table6 = *reinterpret_cast<const MIB_TCP6TABLE_OWNER_PID*>(six.data());
  for (DWORD i = 0; i < table6.dwNumEntries; ++i) {
    const MIB_TCP6ROW_OWNER_PID& row = table6.table[i];
    if (row.dwState == MIB_TCP_STATE_LISTEN &&
        PortOf(row.dwLocalPort) == Agent::AgentProcess::kLinkPort) {
      link.listeners.push_back({AddressText(AF_INET6, row.ucLocalAddr), row.dwOwningPid, {}});
    }
  }
  return NO_ERROR;
}

class Winsock {
 public:
  Winsock() : m_error(WSAStartup(MAKEWORD(2, 2), &m_data)) {}
  ~Winsock() {
    if (m_error == 0) WSACleanup();
  }
  Winsock(const Winsock&) = delete;
  Winsock& operator=(const Winsock&) = delete;
  [[nodiscard]] int Error() const { return m_error; }

 private:
  WSADATA m_data{};
  int m_error;
};

// A UDP socket that sends to a port of 127.0.0.1 and receives from there only.
class RequestSocket {
 public:
  explicit RequestSocket(std::uint16_t port) : m_socket(socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (m_socket != INVALID_SOCKET) {
      m_connected = connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
  }
  ~RequestSocket() {
    if (m_socket != INVALID_SOCKET) closesocket(m_socket);
  }
  RequestSocket(const RequestSocket&) = delete;
  RequestSocket& operator=(const RequestSocket&) = delete;

  [[nodiscard]] bool IsConnected() const { return m_connected; }

  [[nodiscard]] bool Send(const std::string& datagram) const {
    return send(m_socket, datagram.data(), static_cast<int>(datagram.size()), 0) >= 0;
  }

  // Waits for a datagram. False if none came within the time, or if the port is closed.
  [[nodiscard]] bool Receive(ULONGLONG waitMs, std::string& datagram, bool& refused) const {
    // Not select: under Wine it does not report that the port is closed.
    const auto wait = static_cast<DWORD>(waitMs);
    setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&wait),
               sizeof wait);
    datagram.resize(0x10000);
    const int size = recv(m_socket, datagram.data(), static_cast<int>(datagram.size()), 0);
    if (size < 0) {
      const int error = WSAGetLastError();
      refused = error == WSAECONNRESET || error == WSAECONNREFUSED;
      return false;
    }
    datagram.resize(static_cast<std::size_t>(size));
    return true;
  }

 private:
  SOCKET m_socket;
  bool m_connected = false;
};

// Sends once and waits. True if the outcome is then known.
bool Try(const RequestSocket& socket, const std::string& request, std::int32_t id,
         AnswerFacts& answer) {
  using Outcome = AnswerFacts::Outcome;
  if (!socket.Send(request)) {
    const int error = WSAGetLastError();
    const bool refused = error == WSAECONNRESET || error == WSAECONNREFUSED;
    answer.outcome = refused ? Outcome::kRefused : Outcome::kNotSent;
    answer.fault = ErrorText(static_cast<DWORD>(error));
    return true;
  }
  const ULONGLONG end = GetTickCount64() + kWaitMs;
  for (ULONGLONG now = end - kWaitMs; now < end; now = GetTickCount64()) {
    std::string datagram;
    bool refused = false;
    if (!socket.Receive(end - now, datagram, refused)) {
      if (refused) answer.outcome = Outcome::kRefused;
      return refused;
    }
    const auto response = DecodeResponse(datagram);
    if (response && response->requestId == id) {
      answer.response = *response;
      answer.outcome = Outcome::kAnswered;
      return true;
    }
    answer.outcome = Outcome::kNotUnderstood;
  }
  return false;
}

}  // namespace

void GatherLink(Facts& facts) {
  const DWORD error = ReadSockets(facts.link);
  if (error != NO_ERROR) {
    facts.link.whyUnknown = ErrorText(error);
    return;
  }
  const auto names = ProcessNames();
  for (auto* list : {&facts.link.listeners, &facts.link.connections}) {
    for (TcpSocket& socket : *list) {
      const auto name = names.find(socket.processId);
      if (name != names.end()) socket.process = name->second;
    }
  }
}

void GatherAnswer(const Options& options, Facts& facts) {
  using Outcome = AnswerFacts::Outcome;
  AnswerFacts& answer = facts.answer;
  const std::string community = options.community.empty()
                                    ? ReadableCommunity(facts.communities).value_or("")
                                    : options.community;
  if (community.empty()) return;
  const Winsock winsock;
  const RequestSocket socket(options.port);
  if (winsock.Error() != 0 || !socket.IsConnected()) {
    answer.outcome = Outcome::kNotSent;
    answer.fault = ErrorText(static_cast<DWORD>(WSAGetLastError()));
    return;
  }
  const auto id = static_cast<std::int32_t>(GetTickCount64() & 0x7FFFFFFF);
  const std::string request = EncodeGet(community, id, RequestedVariables());
  answer.outcome = Outcome::kSilent;
  for (int i = 0; i < kTries; ++i) {
    if (Try(socket, request, id, answer)) return;
  }
}

}  // namespace Check
