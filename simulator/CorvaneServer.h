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
#include "simulator/Values.h"

namespace Simulator {

// A message on the link: its name, and its body as JSON.
struct Message {
  std::string name;
  std::string data;
};

// Returns the text of a message from the Corvane process. `data` is copied into
// it unchanged.
[[nodiscard]] std::string WriteEnvelope(std::string_view name, std::string_view data);

// Splits a received text. If the text is no envelope, the name is empty and
// `data` is the whole text.
[[nodiscard]] Message ReadEnvelope(const std::string& text);

// How a connection ended.
enum class End {
  InOrder,  // the agent closed it
  Reset,    // the agent reset it
  Dropped,  // this side closed it on request
  NoFrame,  // this side closed it because the agent sent no valid frame
};

// The events so far.
struct Record {
  std::size_t connections = 0;    // number of accepted ones
  std::vector<End> ends;          // of connections, in order
  std::vector<Message> messages;  // received ones, in order, if kept
  std::string bytes;              // all received bytes, if kept
  bool Connected() const { return connections > ends.size(); }
};

struct ServerOptions {
  std::uint16_t port = 0;     // 0: any free one
  bool answerUpdates = true;  // answer SNMPupdate with all groups and the finish
  bool keepBytes = true;      // Record::bytes is filled
  // Gets each event as a line without a line end, on the thread of the event, one
  // call at a time.
  std::function<void(const std::string& line)> print;
  bool keepMessages = true;  // Record::messages is filled
};

// The Corvane process's side of the link. This server listens on 127.0.0.1 and
// serves one agent at a time; the next one waits until the first has gone. It
// answers update requests from its Values, records what it receives, and sends
// what its caller passes.
//
// Only the owner calls Start and Stop; any thread may call the rest. A thread of
// the server accepts and reads.
class CorvaneServer final : private Vask::IOnJsonMessageText, private Vask::IOnError {
 public:
  static constexpr std::chrono::seconds kPatience{60};

  explicit CorvaneServer(ServerOptions options = {});
  ~CorvaneServer() override;
  CorvaneServer(const CorvaneServer&) = delete;
  CorvaneServer& operator=(const CorvaneServer&) = delete;

  // False if the port is not available.
  [[nodiscard]] bool Start();
  // Ends the connection in order and joins the thread.
  void Stop();
  // The port of the server, after Start.
  [[nodiscard]] std::uint16_t Port() const { return m_port; }

  // See Values.
  [[nodiscard]] bool Set(std::string_view name, std::string_view text, std::string& error);
  [[nodiscard]] std::vector<std::string> ValueLines() const;

  // The frames that answer an update request.
  [[nodiscard]] std::string FrameOfGroup(Group group) const;
  [[nodiscard]] static std::string FrameOfFinish();
  [[nodiscard]] std::string FramesOfUpdate() const;
  [[nodiscard]] static std::string FrameOfMessage(std::string_view name, std::string_view data);

  // Sends bytes unchanged. False if there is no connection or it ends meanwhile.
  // Blocks while the agent does not read.
  bool Send(std::string_view bytes);
  // Sends the bytes in pieces, with a pause at each position. Positions count from
  // the start, ascend and lie within the bytes.
  bool SendSplit(std::string_view bytes, const std::vector<std::size_t>& positions,
                 std::chrono::milliseconds pause = std::chrono::milliseconds{20});

  // Ends the connection in order; false if there is none. The record shows the
  // end when this returns.
  bool Drop();
  // Refuses new connections for that time; the present one stays. The server
  // refuses already when this returns.
  void RefuseFor(std::chrono::milliseconds time);
  void SetAnswering(bool on) { m_answering = on; }
  // If off, the bytes that the agent sends stay in the system's buffers.
  void SetReading(bool on) { m_reading = on; }

  [[nodiscard]] Record GetRecord() const;
  // Waits until `wanted` returns true, or for `patience`. The server holds its
  // lock while it calls `wanted`, which must only read the record.
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

  // Only the server thread uses these.
  Vask::Platform::ListeningSocket m_listener;
  Vask::FrameReader m_reader;

  // m_lock guards everything below; m_changed reports each change.
  mutable std::mutex m_lock;
  mutable std::condition_variable m_changed;
  Values m_values;
  Record m_record;
  std::shared_ptr<Connection> m_connection;
  bool m_listening = false;
  Clock::time_point m_refuseUntil{};
};

}  // namespace Simulator
