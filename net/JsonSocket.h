#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "Src/ThreadClass.h"
#include "net/Framing.h"
#include "net/InetSocket.h"
#include "net/LinkInterfaces.h"
#include "platform/Clock.h"
#include "platform/CriticalSection.h"
#include "platform/Event.h"
#include "platform/Sockets.h"
#include "platform/Threading.h"

namespace Vask {

class IJsonSocketEvents;
class IOnError;
class IOnJsonMessageText;

// The link to the main process: a TCP client of 127.0.0.1 that connects again after
// every loss and carries framed JSON texts both ways (net/Framing.h). It does not parse
// the texts that it receives.
//
// The reader thread connects at once and, after a failed attempt, every kRetryMs.
// It reads the stream byte by byte and calls the listener, the events and, for
// faults of the stream, the error sink. After the end of a connection, a fault of
// the stream or an exception of the listener it connects again at once; after an
// exception of OnConnecting or OnConnected it waits kRetryMs. It reports an
// exception as "Vask::JsonSocket::Run: exception!".
//
// Only the owner's thread may set it up, open, stop and destroy it. Any thread may call
// OnJsonMessage, RequestStop, GetState and IsRunning.
class JsonSocket : private ThreadClass, public IOnJsonMessage {
 public:
  // Milliseconds between two attempts to connect.
  static constexpr std::uint32_t kRetryMs = 5000;
  // The longest time in which the reader does not check whether it must stop.
  static constexpr std::uint32_t kPollMs = 100;

  // All arguments are lent and must outlive this object.
  explicit JsonSocket(IJsonSocketEvents* events = nullptr,
                      Platform::Clock& clock = Platform::SystemClock(),
                      Platform::Sockets& sockets = Platform::SystemSockets(),
                      Platform::Threading& threading = Platform::SystemThreading());
  // Stops as StopThread does.
  ~JsonSocket() override;

  // Call these while the thread does not run. Listener, events and sink are lent and may
  // be null. The port is in host order.
  void SetTextListener(IOnJsonMessageText* listener) { m_reader.SetListener(listener); }
  void SetEvents(IJsonSocketEvents* events) { m_events = events; }
  void SetErrorSink(IOnError* sink);
  void SetPort(std::uint16_t port) { m_port = port; }

  // Starts the reader thread and waits until it runs, not until it is connected. Returns
  // false and reports "Vask::JsonSocket::OpenThread open failed" if the thread cannot be
  // created, or if it runs already; then it continues.
  [[nodiscard]] bool OpenThread();

  // Ends the connection in an orderly way, ends the thread and waits for it. The peer
  // sees the end of the stream and no reset, unless it goes on sending. Takes a few
  // kPollMs, also if the thread waits for a peer that does not accept or does not read.
  // May be called again, without a thread, and under the loader's lock.
  void StopThread();

  // Tells the reader to end and ends the connection, without waiting. Meant for the end
  // of the process, when the thread is already gone.
  void RequestStop();

  // Sends one message as one frame. Returns true if the system took all of it. Returns
  // false for null, which is reported as "Vask::JsonSocket::OnJsonMessageNull message".
  // Returns false without a report if there is no connection or it ends meanwhile.
  // Blocks while the peer does not read, until the connection ends. Frames of several
  // threads do not mix.
  bool OnJsonMessage(Json* message) override VASK_EXCLUDES(m_sendLock);

  [[nodiscard]] std::int32_t GetState() const { return m_reader.GetState(); }
  [[nodiscard]] bool IsRunning() const { return m_running.load(std::memory_order_relaxed); }

 private:
  void OnStart() override;
  void Run() override;
  void OnStop() override;

  bool RunOneRound();
  bool ConnectUntilStopped();
  bool TryToConnect();
  bool ReadOneByte();
  void LoseConnection();
  void CloseSocket() VASK_EXCLUDES(m_sendLock);
  void SetSendable() VASK_EXCLUDES(m_sendLock);
  bool SendFrame(const std::string& frame) VASK_EXCLUDES(m_sendLock);

  IJsonSocketEvents* m_events;
  IOnError* m_errorSink = nullptr;
  Platform::Clock& m_clock;
  Platform::Sockets& m_sockets;
  InetSocketConnector m_socket;
  std::atomic<bool> m_running{false};
  std::uint16_t m_port = 0;
  FrameReader m_reader;
  // Milliseconds since the last attempt to connect; at first large enough that the reader
  // tries at once. Only the reader thread uses it while it runs.
  std::uint32_t m_waitedMs = kRetryMs;

  // The reader thread sets this when it has left its loop.
  Platform::Event m_readerLeft;

  // Keeps frames whole, and the socket open while a frame is sent. No callback runs
  // under it. A sender may hold it as long as the peer does not read. CloseSocket shuts
  // the socket down before it takes this lock, which ends such a send.
  Platform::CriticalSection m_sendLock{Platform::LockRank::LinkSending};
  bool m_sendable VASK_GUARDED_BY(m_sendLock) = false;
};

}  // namespace Vask
