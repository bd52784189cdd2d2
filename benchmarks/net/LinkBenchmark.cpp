// Measures the processor time of the link's reader thread. Compares it with a bare thread
// that only makes the same calls on the same kind of socket: waits of 100 ms, and for
// each byte a wait and a receive.
//
// The figures come from the reading thread's own clock, so other load does not count.

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <thread>

#include "net/Framing.h"
#include "net/InetSocket.h"
#include "net/JsonSocket.h"
#include "net/LinkInterfaces.h"
#include "platform/ListeningSocket.h"
#include "platform/Sockets.h"

namespace {

using Vask::Platform::SocketHandle;
using Vask::Platform::SystemSockets;

double ThreadSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// One of the messages that an update brings.
const std::string& Frame() {
  static const std::string frame = [] {
    std::string text;
    Vask::AppendFrame(text, R"({"data":{"messageType":{"AudioSources":{"Count":6,"Errors":0,)"
                            R"("Silence":0}}},"from":"Corvane","id":0,"name":"SNMPmessage",)"
                            R"("op":"broadcast"})");
    return text;
  }();
  return frame;
}

// Counts frames on the reading thread and records its time after the last expected one.
class Marker {
 public:
  // The owner's thread calls this before it sends the frames.
  void Expect(std::size_t frames) {
    m_left = frames;
    m_reached = false;
  }
  void CountOne() {
    if (--m_left > 0) return;
    m_seconds = ThreadSeconds();
    m_reached = true;
  }
  double Wait() const {
    while (!m_reached) std::this_thread::sleep_for(std::chrono::microseconds{200});
    return m_seconds;
  }

 private:
  std::atomic<std::size_t> m_left{0};
  std::atomic<bool> m_reached{false};
  std::atomic<double> m_seconds{0};
};

// The link, connected to `listener`.
class LinkReader final : private Vask::IOnJsonMessageText {
 public:
  explicit LinkReader(Vask::Platform::ListeningSocket& listener) {
    m_link.SetTextListener(this);
    m_link.SetPort(listener.Port());
    if (!m_link.OpenThread()) std::abort();
  }
  ~LinkReader() { m_link.StopThread(); }
  Marker marker;

 private:
  bool OnJsonMessageText(const char*) override {
    marker.CountOne();
    return true;
  }
  Vask::JsonSocket m_link;
};

// The bare thread: counts bytes instead of reading frames.
class BareReader {
 public:
  explicit BareReader(Vask::Platform::ListeningSocket& listener) {
    if (!m_socket.Connect("127.0.0.1", listener.Port())) std::abort();
    m_thread = std::thread([this] { Run(); });
  }
  ~BareReader() {
    m_running = false;
    m_thread.join();
  }
  Marker marker;

 private:
  void Run() {
    const SocketHandle handle = m_socket.Handle();
    std::size_t bytes = 0;
    while (m_running) {
      char byte = 0;
      const auto readiness = SystemSockets().WaitReadable(handle, Vask::JsonSocket::kPollMs);
      if (readiness != Vask::Platform::Readiness::Readable) continue;
      if (SystemSockets().Receive(handle, &byte, 1) != 1) return;
      if (++bytes % Frame().size() == 0) marker.CountOne();
    }
  }

  Vask::InetSocketConnector m_socket;
  std::atomic<bool> m_running{true};
  std::thread m_thread;
};

// A reader and the end of the connection that feeds it.
template <class Reader>
class Feed {
 public:
  Feed() {
    if (!m_listener.Open(0)) std::abort();
    m_reader.emplace(m_listener);
    m_handle = m_listener.Accept(10'000);
    if (m_handle == Vask::Platform::kInvalidSocket) std::abort();
  }
  ~Feed() {
    m_reader.reset();
    SystemSockets().Close(m_handle);
  }

  // Sends frames in bursts of `burst`, `pause` apart. Returns the reading thread's time
  // after the last frame.
  double Send(std::size_t frames, std::size_t burst, std::chrono::microseconds pause) {
    std::string bytes;
    for (std::size_t i = 0; i < burst; ++i) bytes += Frame();
    m_reader->marker.Expect(frames);
    for (std::size_t sent = 0; sent < frames; sent += burst) {
      if (sent > 0) std::this_thread::sleep_for(pause);
      if (SystemSockets().Send(m_handle, bytes.data(), bytes.size()) < 0) std::abort();
    }
    return m_reader->marker.Wait();
  }
  double SendOne() { return Send(1, 1, {}); }

 private:
  Vask::Platform::ListeningSocket m_listener;
  std::optional<Reader> m_reader;
  SocketHandle m_handle = Vask::Platform::kInvalidSocket;
};

// Measures two seconds without a byte, between two frames.
template <class Reader>
void Idle(benchmark::State& state) {
  for (auto _ : state) {
    Feed<Reader> feed;
    const double before = feed.SendOne();
    std::this_thread::sleep_for(std::chrono::seconds{2});
    state.SetIterationTime(feed.SendOne() - before);
  }
}

// Frames that arrive one at a time.
template <class Reader>
void PacedFrame(benchmark::State& state) {
  constexpr std::size_t kFrames = 50;
  for (auto _ : state) {
    Feed<Reader> feed;
    const double before = feed.SendOne();
    const double after = feed.Send(kFrames, 1, std::chrono::milliseconds{2});
    state.SetIterationTime((after - before) / kFrames);
  }
}

// Frames that have all arrived before they are read.
template <class Reader>
void StreamedFrame(benchmark::State& state) {
  constexpr std::size_t kFrames = 500;
  for (auto _ : state) {
    Feed<Reader> feed;
    const double before = feed.SendOne();
    const double after = feed.Send(kFrames, kFrames, {});
    state.SetIterationTime((after - before) / kFrames);
  }
}

// One repetition takes up to a few seconds, so there are few.
void FewLongOnes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Iterations(1)->Repetitions(15)->UseManualTime();
}

BENCHMARK(Idle<LinkReader>)->Name("idle_link")->Apply(FewLongOnes);
BENCHMARK(Idle<BareReader>)->Name("idle_bare_thread")->Apply(FewLongOnes);
BENCHMARK(PacedFrame<LinkReader>)->Name("paced_frame_link")->Apply(FewLongOnes);
BENCHMARK(PacedFrame<BareReader>)->Name("paced_frame_bare_thread")->Apply(FewLongOnes);
BENCHMARK(StreamedFrame<LinkReader>)->Name("streamed_frame_link")->Apply(FewLongOnes);
BENCHMARK(StreamedFrame<BareReader>)->Name("streamed_frame_bare_thread")->Apply(FewLongOnes);

}  // namespace
