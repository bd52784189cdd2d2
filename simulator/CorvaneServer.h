#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Src/ErrReporter.h"
#include "net/Framing.h"
#include "net/LinkInterfaces.h"
#include "platform/ListeningSocket.h"
#include "simulator/Connection.h"
#include "simulator/Envelope.h"
#include "simulator/Values.h"

namespace Simulator {

// How a connection ended.
enum class End {
  InOrder,  // the agent closed it
  Reset,    // the agent broke it off
  Dropped,  // this side closed it, as told
  NoFrame,  // this side closed it, since what came was no frame
};

// What has happened so far.
struct Record {
  std::size_t connections = 0;    // accepted
  std::vector<End> ends;          // of connections, in order
  std::vector<Message> messages;  // received, in order, if kept
  std::string bytes;              // everything received, as it came, if kept
  bool Connected() const { return connections > ends.size(); }
};

struct ServerOptions {
  std::uint16_t port = 0;     // 0: any free one
  bool answerUpdates = true;  // answer SNMPupdate with all groups and the finish
  bool keepBytes = true;      // Record::bytes is filled
  // Gets every event as a line of its own without a line end, on the thread on
  // which it happened, one at a time.
  std::function<void(const std::string& line)> print;
  bool keepMessages = true;  // Record::messages is filled
};

// The Corvane process's side of the link: a server on 127.0.0.1 that serves one
// agent at a time (the next one waits until it is gone), answers requests for an
// update from its Values, records what it receives, and sends whatever it is
// told to.
//
// Start and Stop are the owner's; everything else may be called from any thread.
// A thread of its own accepts and reads.
class CorvaneServer final : private Vask::IOnJsonMessageText, private Vask::IOnError {
 public:
  static constexpr std::chrono::seconds kPatience{60};

  explicit CorvaneServer(ServerOptions options = {});
  ~CorvaneServer() override;
  CorvaneServer(const CorvaneServer&) = delete;
  CorvaneServer& operator=(const CorvaneServer&) = delete;

  // False when the port cannot be had.
  [[nodiscard]] bool Start();
  // Ends the connection in order and the thread with it.
  void Stop();
  // The port that it listens on; after Start.
  [[nodiscard]] std::uint16_t Port() const { return m_port; }

  // See Values.
  [[nodiscard]] bool Set(std::string_view name, std::string_view text, std::string& error);
  [[nodiscard]] std::vector<std::string> ValueLines() const;

  // The frames that answer a request for an update.
  [[nodiscard]] std::string FrameOfGroup(Group group) const;
  [[nodiscard]] static std::string FrameOfFinish();
  [[nodiscard]] std::string FramesOfUpdate() const;
  [[nodiscard]] static std::string FrameOfMessage(std::string_view name, std::string_view data);

  // Sends bytes as they are. False without a connection, or when it ends
  // meanwhile. Blocks while the agent does not read.
  bool Send(std::string_view bytes);
  // Cuts the bytes at the given positions, counted from their start, and pauses
  // at each cut. Positions ascend and lie within the bytes.
  bool SendSplit(std::string_view bytes, const std::vector<std::size_t>& positions,
                 std::chrono::milliseconds pause = std::chrono::milliseconds{20});

  // Ends the connection in order; false when there is none. The agent is gone
  // from the record when this returns.
  bool Drop();
  // Refuses connections for that long; the one that stands is kept. Refusing has
  // begun when this returns.
  void RefuseFor(std::chrono::milliseconds time);
  void SetAnswering(bool on) { m_answering = on; }
  // Off: what the agent sends stays in the system's buffers.
  void SetReading(bool on) { m_reading = on; }

  [[nodiscard]] Record GetRecord() const;
  // Waits until the record is as `wanted` asks, at most that long. `wanted` is
  // called with the server locked and must only look.
  [[nodiscard]] bool WaitFor(const std::function<bool(const Record&)>& wanted,
                             std::chrono::milliseconds patience = kPatience) const;
  [[nodiscard]] bool WaitForConnections(std::size_t count) const;
  [[nodiscard]] bool WaitForEnds(std::size_t count) const;
  [[nodiscard]] bool WaitForMessages(std::size_t count) const;

 private:
  using Clock = std::chrono::steady_clock;

  bool OnJsonMessageText(const char* text) override;
  void OnError(Vask::Json* message, const char* text) override;

  void Run();
  void FollowRefusal();
  void AcceptOne();
  void ReadSome();
  void TakeBytes(std::string_view bytes);
  void EndConnection(End end);
  std::shared_ptr<Connection> CurrentConnection() const;
  void Print(const std::string& line);

  const ServerOptions m_options;
  std::uint16_t m_port = 0;
  std::thread m_thread;
  std::atomic<bool> m_stopping{false};
  std::atomic<bool> m_answering;
  std::atomic<bool> m_reading{true};
  std::atomic<bool> m_dropping{false};
  std::mutex m_printLock;

  // The server thread's own.
  Vask::Platform::ListeningSocket m_listener;
  Vask::FrameReader m_reader;

  // Everything below belongs to m_lock; m_changed tells of each change.
  mutable std::mutex m_lock;
  mutable std::condition_variable m_changed;
  Values m_values;
  Record m_record;
  std::shared_ptr<Connection> m_connection;
  bool m_listening = false;
  Clock::time_point m_refuseUntil{};
};

}  // namespace Simulator
