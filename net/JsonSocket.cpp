#include "net/JsonSocket.h"

#include <limits>

#include "Src/ErrReporter.h"
#include "json/Json.h"
#include "net/Framing.h"
#include "net/LinkInterfaces.h"

namespace Vask {

namespace {

constexpr char kPeerHost[] = "127.0.0.1";

// A text up to this size costs one allocation. Its frame costs another one.
constexpr std::size_t kUsualMessageBytes = 512;

// A stop first waits this long for the reader to leave its loop by itself. That takes
// at most one poll, unless the reader waits in a system call.
constexpr std::uint32_t kOrderlyStopMs = 2 * JsonSocket::kPollMs;

// After that a stop shuts the socket down again and again, because one shutdown does not
// end a call that the reader is about to make. It gives up after these steps, because a
// thread that the system killed never signals.
constexpr std::uint32_t kForcedStopStepMs = 20;
constexpr int kForcedStopSteps = 100;

}  // namespace

JsonSocket::JsonSocket(IJsonSocketEvents* events, Platform::Clock& clock,
                       Platform::Sockets& sockets, Platform::Threading& threading)
    : ThreadClass(threading),
      m_events(events),
      m_clock(clock),
      m_sockets(sockets),
      m_socket(sockets),
      m_readerLeft(Platform::EventReset::Automatic, threading) {}

JsonSocket::~JsonSocket() {
  StopThread();
}

void JsonSocket::SetErrorSink(IOnError* sink) {
  m_errorSink = sink;
  m_reader.SetErrorSink(sink);
}

bool JsonSocket::OpenThread() {
  if (Start()) return true;
  IOnError::Report(m_errorSink, "Vask::JsonSocket::OpenThread open failed");
  if (!HasThread()) m_running.store(false, std::memory_order_relaxed);
  return false;
}

void JsonSocket::StopThread() {
  Stop();
  CloseSocket();
  m_reader.End();
}

void JsonSocket::RequestStop() {
  m_running.store(false, std::memory_order_relaxed);
  m_socket.Shutdown();
}

// Start calls this only if there is no thread yet.
void JsonSocket::OnStart() {
  static_cast<void>(m_readerLeft.Ensure());  // without the event a stop shuts down at once
  m_reader.End();
  m_waitedMs = kRetryMs;
  m_running.store(true, std::memory_order_relaxed);
}

void JsonSocket::OnStop() {
  m_running.store(false, std::memory_order_relaxed);
  bool left = m_readerLeft.Wait(kOrderlyStopMs);
  m_socket.Shutdown();
  for (int step = 0; step < kForcedStopSteps && !left; ++step) {
    left = m_readerLeft.Wait(kForcedStopStepMs);
    m_socket.Shutdown();
  }
}

void JsonSocket::Run() {
  while (IsRunning()) {
    if (!RunOneRound()) LoseConnection();
  }
  m_readerLeft.Set();
}

// Returns false if the connection must be dropped. An exception, of a listener or of a byte
// for which there is no memory, is reported and drops the connection too.
bool JsonSocket::RunOneRound() {
  try {
    if (GetState() == FrameReader::kDisconnected && !ConnectUntilStopped()) return true;
    return ReadOneByte();
  } catch (...) {
    IOnError::Report(m_errorSink, "Vask::JsonSocket::Run: exception!");
    return false;
  }
}

// Returns true with a connection, false if the reader must stop. An exception of
// OnConnecting or OnConnected leaves m_waitedMs at 0, so the next attempt waits as after
// any failure.
bool JsonSocket::ConnectUntilStopped() {
  while (IsRunning()) {
    if (m_waitedMs >= kRetryMs) {
      m_waitedMs = 0;
      if (TryToConnect()) break;
    }
    m_clock.SleepMs(kPollMs);
    m_waitedMs += kPollMs;
  }
  if (!IsRunning()) return false;
  m_reader.Begin();
  if (m_events != nullptr) m_events->OnConnected();
  m_waitedMs = kRetryMs;  // after a loss the reader tries at once
  return true;
}

bool JsonSocket::TryToConnect() {
  if (m_events != nullptr) m_events->OnConnecting();
  CloseSocket();
  if (m_socket.Connect(kPeerHost, m_port)) {
    SetSendable();
    return true;
  }
  if (m_events != nullptr) m_events->OnConnectFailed();
  return false;
}

// Returns false at the end of the connection and after a fault of the stream.
bool JsonSocket::ReadOneByte() {
  const Platform::SocketHandle handle = m_socket.Handle();
  const Platform::Readiness readiness = m_sockets.WaitReadable(handle, kPollMs);
  if (readiness == Platform::Readiness::TimedOut) return true;
  char byte = 0;
  if (readiness == Platform::Readiness::Failed || m_sockets.Receive(handle, &byte, 1) != 1) {
    return false;
  }
  return m_reader.ProcessByte(byte);
}

// The socket stays open until the next attempt to connect.
void JsonSocket::LoseConnection() {
  m_reader.End();
  if (m_events != nullptr) m_events->OnDisconnected();
}

// The shutdown ends a send that holds the lock.
void JsonSocket::CloseSocket() {
  m_socket.Shutdown();
  const Platform::CriticalSectionLock lock(m_sendLock);
  m_sendable = false;
  m_socket.Close();
}

void JsonSocket::SetSendable() {
  const Platform::CriticalSectionLock lock(m_sendLock);
  m_sendable = true;
}

bool JsonSocket::OnJsonMessage(Json* message) {
  if (message == nullptr) {
    IOnError::Report(m_errorSink, "Vask::JsonSocket::OnJsonMessageNull message");
    return false;
  }
  std::string body;
  body.reserve(kUsualMessageBytes);
  message->Write(body);
  std::string frame;
  AppendFrame(frame, body);
  return SendFrame(frame);
}

bool JsonSocket::SendFrame(const std::string& frame) {
  if (frame.size() > std::numeric_limits<std::int32_t>::max()) return false;
  const auto length = static_cast<std::int32_t>(frame.size());
  const Platform::CriticalSectionLock lock(m_sendLock);
  return m_sendable && m_socket.Send(frame.data(), length) == length;
}

}  // namespace Vask
