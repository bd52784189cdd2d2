#include "simulator/CorvaneServer.h"

#include <utility>

#include "json/Json.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "net/Framing.h"
#include "simulator/Text.h"

namespace Simulator {

using Vask::Platform::Readiness;

namespace {

// The longest time that the server thread waits in one call.
constexpr std::uint32_t kSliceMs = 20;

const char* EndLine(End end) {
  switch (end) {
    case End::InOrder:
      return "disconnected: closed by the agent";
    case End::Reset:
      return "disconnected: reset by the agent";
    case End::Dropped:
      return "disconnected: dropped";
    case End::NoFrame:
      break;
  }
  return "disconnected: the agent sent no valid frame";
}

}  // namespace

std::string WriteEnvelope(std::string_view name, std::string_view data) {
  return "{\"data\":" + std::string(data) +
         ",\"from\":\"Corvane\",\"id\":0,\"name\":" + Quoted(name) + ",\"op\":\"broadcast\"}";
}

Message ReadEnvelope(const std::string& text) {
  Message noEnvelope{"", text};
  Vask::ParseResult result;
  const Vask::JsonRef<Vask::Json> root(Vask::Parse(result, text.c_str()));
  if (!root || root->Type() != Vask::JsonType::Object) return noEnvelope;
  const auto& envelope = static_cast<const Vask::JsonObject&>(*root);
  const Vask::Json* const name = envelope.Find("name");
  const Vask::Json* const data = envelope.Find("data");
  if (name == nullptr || name->Type() != Vask::JsonType::String || data == nullptr) {
    return noEnvelope;
  }
  Message message;
  message.name = static_cast<const Vask::JsonString*>(name)->Text();
  data->Write(message.data);
  return message;
}

CorvaneServer::CorvaneServer(ServerOptions options)
    : m_options(std::move(options)), m_answering(m_options.answerUpdates) {
  m_reader.SetListener(this);
  m_reader.SetErrorSink(this);
}

CorvaneServer::~CorvaneServer() {
  Stop();
}

bool CorvaneServer::Start() {
  if (!m_listener.Open(m_options.port)) return false;
  m_port = m_listener.Port();
  m_listening = true;
  m_stopping = false;
  m_thread = std::thread([this] { Run(); });
  return true;
}

void CorvaneServer::Stop() {
  if (!m_thread.joinable()) return;
  m_stopping = true;
  if (const auto connection = CurrentConnection()) {
    m_dropping = true;
    connection->Shutdown();
  }
  m_thread.join();
}

bool CorvaneServer::Set(std::string_view name, std::string_view text, std::string& error) {
  const std::lock_guard lock(m_lock);
  return m_values.Set(name, text, error);
}

std::vector<std::string> CorvaneServer::ValueLines() const {
  const std::lock_guard lock(m_lock);
  return m_values.Lines();
}

std::string CorvaneServer::FrameOfGroup(Group group) const {
  const std::lock_guard lock(m_lock);
  return FrameOfMessage("SNMPmessage", m_values.Body(group));
}

std::string CorvaneServer::FrameOfFinish() {
  return FrameOfMessage("SNMPupdateFinished", "{}");
}

std::string CorvaneServer::FramesOfUpdate() const {
  std::string frames;
  for (const Group group : kGroups) frames += FrameOfGroup(group);
  return frames + FrameOfFinish();
}

std::string CorvaneServer::FrameOfMessage(std::string_view name, std::string_view data) {
  std::string frame;
  Vask::AppendFrame(frame, WriteEnvelope(name, data));
  return frame;
}

bool CorvaneServer::Send(std::string_view bytes) {
  const auto connection = CurrentConnection();
  return connection != nullptr && connection->Send(bytes);
}

bool CorvaneServer::SendSplit(std::string_view bytes, const std::vector<std::size_t>& positions,
                              std::chrono::milliseconds pause) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (const std::size_t position : positions) {
    pieces.push_back(bytes.substr(start, position - start));
    start = position;
  }
  pieces.push_back(bytes.substr(start));
  const auto connection = CurrentConnection();
  return connection != nullptr && connection->SendInPieces(pieces, pause);
}

bool CorvaneServer::Drop() {
  std::unique_lock lock(m_lock);
  if (m_connection == nullptr) return false;
  const std::size_t wanted = m_record.ends.size() + 1;
  m_dropping = true;
  m_connection->Shutdown();
  return m_changed.wait_for(lock, kPatience, [&] { return m_record.ends.size() >= wanted; });
}

void CorvaneServer::RefuseFor(std::chrono::milliseconds time) {
  Print("refusing connections for " + std::to_string(time.count()) + " ms");
  std::unique_lock lock(m_lock);
  m_refuseUntil = Clock::now() + time;
  m_changed.wait_for(lock, kPatience,
                     [&] { return !m_listening || Clock::now() >= m_refuseUntil; });
}

Record CorvaneServer::GetRecord() const {
  const std::lock_guard lock(m_lock);
  return m_record;
}

bool CorvaneServer::WaitFor(const std::function<bool(const Record&)>& wanted,
                            std::chrono::milliseconds patience) const {
  std::unique_lock lock(m_lock);
  return m_changed.wait_for(lock, patience, [&] { return wanted(m_record); });
}

bool CorvaneServer::WaitForConnections(std::size_t count) const {
  return WaitFor([=](const Record& record) { return record.connections >= count; });
}

bool CorvaneServer::WaitForEnds(std::size_t count) const {
  return WaitFor([=](const Record& record) { return record.ends.size() >= count; });
}

bool CorvaneServer::WaitForMessages(std::size_t count) const {
  return WaitFor([=](const Record& record) { return record.messages.size() >= count; });
}

void CorvaneServer::Run() {
  while (!m_stopping) {
    FollowRefusal();
    if (CurrentConnection() != nullptr) {
      ReadSome();
    } else {
      AcceptOne();
    }
  }
  if (CurrentConnection() != nullptr) EndConnection(End::Dropped);
  m_listener.Close();
}

// Only the server thread uses the listener, because another thread must not close
// it during a wait.
void CorvaneServer::FollowRefusal() {
  bool changed = false;
  {
    const std::lock_guard lock(m_lock);
    const bool refusing = Clock::now() < m_refuseUntil;
    if (refusing && m_listening) {
      m_listener.Close();
      m_listening = false;
    } else if (!refusing && !m_listening) {
      m_listening = changed = m_listener.Open(m_port);
    }
    m_changed.notify_all();
  }
  if (changed) Print("listening again");
}

void CorvaneServer::AcceptOne() {
  if (!m_listener.IsOpen()) {
    std::this_thread::sleep_for(std::chrono::milliseconds{kSliceMs});
    return;
  }
  const Vask::Platform::SocketHandle handle = m_listener.Accept(kSliceMs);
  if (handle == Vask::Platform::kInvalidSocket) return;
  m_reader.Begin();
  {
    const std::lock_guard lock(m_lock);
    m_connection = std::make_shared<Connection>(handle);
    m_dropping = false;
  }
  // Prints first: a caller that has waited for the record finds the line printed,
  // and a caller that has read the line may already send.
  Print("connected");
  const std::lock_guard lock(m_lock);
  ++m_record.connections;
  m_changed.notify_all();
}

void CorvaneServer::ReadSome() {
  const auto connection = CurrentConnection();
  if (m_dropping) return EndConnection(End::Dropped);
  if (!m_reading) {
    std::this_thread::sleep_for(std::chrono::milliseconds{kSliceMs});
    return;
  }
  const Readiness readiness = connection->WaitReadable(kSliceMs);
  if (readiness == Readiness::TimedOut || !m_reading) return;
  char bytes[4096];
  const int count = readiness == Readiness::Failed ? -1 : connection->Receive(bytes, sizeof bytes);
  if (count > 0) return TakeBytes(std::string_view(bytes, static_cast<std::size_t>(count)));
  EndConnection(count == 0 ? End::InOrder : End::Reset);
}

void CorvaneServer::TakeBytes(std::string_view bytes) {
  if (m_options.keepBytes) {
    const std::lock_guard lock(m_lock);
    m_record.bytes += bytes;
    m_changed.notify_all();
  }
  for (const char byte : bytes) {
    if (!m_reader.ProcessByte(byte)) return EndConnection(End::NoFrame);
  }
}

void CorvaneServer::EndConnection(End end) {
  m_reader.End();
  std::shared_ptr<Connection> ended;
  {
    const std::lock_guard lock(m_lock);
    ended = std::move(m_connection);
    if (m_dropping.exchange(false)) end = End::Dropped;
  }
  ended->Shutdown();
  ended.reset();
  Print(EndLine(end));
  const std::lock_guard lock(m_lock);
  m_record.ends.push_back(end);
  m_changed.notify_all();
}

bool CorvaneServer::OnJsonMessageText(const char* text) {
  Message message = ReadEnvelope(text);
  Print(message.name.empty() ? "received a frame: " + Escaped(message.data)
                             : "received " + Escaped(message.name) + ' ' + Escaped(message.data));
  const bool isRequest = EqualsIgnoringCase(message.name, "SNMPupdate");
  if (m_options.keepMessages) {
    const std::lock_guard lock(m_lock);
    m_record.messages.push_back(std::move(message));
    m_changed.notify_all();
  }
  if (isRequest && m_answering && Send(FramesOfUpdate())) Print("answered with the whole update");
  return true;
}

void CorvaneServer::OnError(Vask::Json*, const char* text) {
  Print("received an invalid frame: " + Escaped(text));
}

std::shared_ptr<Connection> CorvaneServer::CurrentConnection() const {
  const std::lock_guard lock(m_lock);
  return m_connection;
}

void CorvaneServer::Print(const std::string& line) {
  if (!m_options.print) return;
  const std::lock_guard lock(m_printLock);
  m_options.print(line);
}

}  // namespace Simulator
