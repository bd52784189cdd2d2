#include "tests/hostile/Target.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include "platform/Clock.h"

namespace Hostile {

using Vask::Platform::SystemClock;

namespace {

constexpr std::uint32_t kPatienceMs = 120'000;
// On a new link, the time until the next good frame is sent.
constexpr std::uint32_t kTryMs = 3'000;
// The time to read a byte on the slowest machine while other programs run.
constexpr std::size_t kSlowestByteMs = 2;
// The agent accepts counts of streams up to 1024.
constexpr int kMostStreams = 1000;

Simulator::ServerOptions PeerOptions() {
  Simulator::ServerOptions options;
  options.port = Contract::kLinkPort;
  options.answerUpdates = false;
  options.keepBytes = false;
  options.keepMessages = false;
  return options;
}

}  // namespace

Target::Target() : m_peer(PeerOptions()) {}

std::string Target::Begin(bool isStarted) {
  if (!m_peer.Start()) return "the agent's port is taken";
  if (!isStarted && !m_module.Init().result) return "the module does not start";
  if (!m_peer.WaitForConnections(1)) return "the link does not come up";
  return Serves(false);
}

std::string Target::Take(const Input& input) {
  const std::size_t connections = Connections();
  const std::size_t ends = Ends();
  // Send fails if the agent has ended the connection. The checks below find that.
  static_cast<void>(m_peer.Send(input.bytes));
  const std::chrono::milliseconds patience(kPatienceMs + input.bytes.size() * kSlowestByteMs);
  if (input.then == Then::PeerDrops) m_peer.Drop();
  if (input.then == Then::InStep) {
    const std::string wrong = Serves(true, input.bytes.size());
    return wrong.empty() && Ends() != ends ? "the agent ended the link" : wrong;
  }
  const auto ended = [=](const Simulator::Record& record) { return record.ends.size() > ends; };
  if (!m_peer.WaitFor(ended, patience)) return "the agent did not end the link";
  // The agent first reads all that the peer sent before it dropped the link.
  const auto back = [=](const Simulator::Record& record) {
    return record.connections > connections;
  };
  if (!m_peer.WaitFor(back, patience)) return "the link did not come back";
  return Serves(false);
}

std::string Target::Serves(bool firstFrameCounts, std::size_t bytesBefore) {
  m_count = m_count % kMostStreams + 1;
  const std::uint32_t start = SystemClock().TickMs();
  const auto patienceMs = static_cast<std::uint32_t>(kPatienceMs + bytesBefore * kSlowestByteMs);
  const std::uint32_t tryMs = firstFrameCounts ? patienceMs : kTryMs;
  bool applied = false;
  do {
    static_cast<void>(m_peer.Send(StreamsFrame(m_count, 0)));
    applied = Comes("INT " + std::to_string(m_count), tryMs);
  } while (!applied && SystemClock().TickMs() - start < patienceMs);
  if (!applied) return "the next good frame was not applied";
  return m_module.GetNext("P.1.9") == "0 P.2.0 = INT " + std::to_string(m_count)
             ? ""
             : "GetNext answers something else";
}

std::string Target::Flood(std::size_t frames, bool takeTraps) {
  const std::string failed = StreamsFrame(1, 1);
  const std::string good = StreamsFrame(1, 0);
  for (std::size_t i = 0; i < frames; ++i) {
    if (!m_peer.Send(i % 2 == 0 ? failed : good)) return "the link ended under the flood";
    if (takeTraps && i % 64 == 0) m_module.TakeTraps();
  }
  return Serves(true, frames * failed.size());
}

std::string Target::AnswersUpdate() {
  // Another number than in the update before: the new one shows that the link is back.
  m_updateCount = m_updateCount == kMostStreams + 1 ? kMostStreams + 3 : kMostStreams + 1;
  const std::string count = std::to_string(m_updateCount);
  std::string error;
  if (!m_peer.Set("StreamsCount", count, error)) return error;
  m_peer.Drop();  // the agent asks again on a new link
  m_peer.SetAnswering(true);
  const bool came = Comes("INT " + count, kPatienceMs);
  m_peer.SetAnswering(false);
  return came ? "" : "the agent asked for no update";
}

std::string Target::HowLinksEnded() const {
  constexpr const char* kNames[] = {"in order", "reset", "dropped", "no frame"};
  constexpr std::size_t kLast = 5;
  const std::vector<Simulator::End> ends = m_peer.GetRecord().ends;
  std::string text = "; links ended";
  for (std::size_t i = ends.size() < kLast ? 0 : ends.size() - kLast; i < ends.size(); ++i)
    text += std::string(" ") + kNames[static_cast<std::size_t>(ends[i])];
  return text;
}

bool Target::Comes(const std::string& value, std::uint32_t patienceMs) {
  const std::string wanted = "0 P.2.0 = " + value;
  const std::uint32_t start = SystemClock().TickMs();
  std::uint32_t pauseMs = 1;  // grows, because each Get writes lines to the log
  while (m_module.Get("P.2.0") != wanted) {
    if (SystemClock().TickMs() - start > patienceMs) return false;
    SystemClock().SleepMs(pauseMs);
    pauseMs = std::min<std::uint32_t>(2 * pauseMs, 64);
  }
  return true;
}

std::size_t Target::Connections() const {
  std::size_t count = 0;
  static_cast<void>(m_peer.WaitFor([&](const Simulator::Record& record) {
    count = record.connections;
    return true;
  }));
  return count;
}

std::size_t Target::Ends() const {
  std::size_t count = 0;
  static_cast<void>(m_peer.WaitFor([&](const Simulator::Record& record) {
    count = record.ends.size();
    return true;
  }));
  return count;
}

}  // namespace Hostile
