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

// The link to the main process: a TCP client of 127.0.0.1 that keeps itself
// connected and carries framed JSON texts both ways (FrameReader, FrameWriter).
// It is no parser: what it receives it hands on as text.
//
// The reader thread connects at once and, after a failed attempt, every kRetryMs.
// It reads the stream byte by byte and calls the listener, the events and, for
// faults of the stream, the error sink. After the end of a connection, a fault of
// the stream or an exception of the listener it connects again at once; after an
// exception of OnConnecting or OnConnected it waits kRetryMs. It reports an
// exception as "Vask::JsonSocket::Run: exception!".
//
// The owner's thread sets it up, opens, stops and destroys it. OnJsonMessage,
// RequestStop, GetState and IsRunning may be called from any thread.
class JsonSocket : private ThreadClass, public IOnJsonMessage {
 public:
  // Between two attempts to connect.
  static constexpr std::uint32_t kRetryMs = 5000;
  // The longest stretch in which the reader does not look whether it is to stop.
  static constexpr std::uint32_t kPollMs = 100;

  // Everything is lent and must outlive this object.
  explicit JsonSocket(IJsonSocketEvents* events = nullptr,
                      Platform::Clock& clock = Platform::SystemClock(),
                      Platform::Sockets& sockets = Platform::SystemSockets(),
                      Platform::Threading& threading = Platform::SystemThreading());
  // Stops as StopThread does.
  ~JsonSocket() override;

  // To be set while the thread does not run. Listener, events and sink are lent
  // and may be null. The port is in host order.
  void SetTextListener(IOnJsonMessageText* listener) { m_reader.SetListener(listener); }
  void SetEvents(IJsonSocketEvents* events) { m_events = events; }
  void SetErrorSink(IOnError* sink);
  void SetPort(std::uint16_t port) { m_port = port; }

  // Starts the reader thread and waits until it runs, not until it is
  // connected. False, reported as "Vask::JsonSocket::OpenThread open failed",
  // when there is no thread to be had, or when it runs already: then it goes on.
  [[nodiscard]] bool OpenThread();

  // Ends the connection in an orderly way and the thread with it, and waits for
  // that; the peer sees the end of the stream and no reset, unless it goes on
  // sending. Takes some kPollMs, also when the thread is waiting for a peer that
  // does not answer or does not read. May be called again, without a thread, and
  // under the loader's lock.
  void StopThread();

  // Lets the reader end soon and ends the connection, without waiting for
  // anything: for the end of the process, when the thread is already gone.
  void RequestStop();

  // Sends one message as one frame; true when all of it was handed to the
  // system. False for null, reported as
  // "Vask::JsonSocket::OnJsonMessageNull message", without a connection, and
  // when the connection ends meanwhile; the latter two are not reported. Blocks
  // while the peer does not read, until the connection ends. Frames of several
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
  // Since the last attempt to connect; the first one is made at once. The reader
  // thread's own.
  std::uint32_t m_waitedMs = kRetryMs;

  // Set by the reader thread when it has left its loop.
  Platform::Event m_readerLeft;

  // Keeps whole frames whole, and the socket's handle in place while one is
  // being sent. Nothing is called back under it. Whoever wants it from a sender
  // that a peer keeps waiting shuts the socket down first, which needs no lock.
  Platform::CriticalSection m_sendLock{Platform::LockRank::LinkSending};
  bool m_sendable VASK_GUARDED_BY(m_sendLock) = false;
};

}  // namespace Vask
