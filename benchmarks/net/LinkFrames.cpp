// Prints how many frames a second the link takes in, for some sizes of their bodies. The
// sender is always some frames ahead, so the link never waits.
//
//   link_frames [MILLISECONDS]    for each size, 3000 by default
//
// A program of its own, because it also runs as a Windows program.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "net/Framing.h"
#include "net/JsonSocket.h"
#include "net/LinkInterfaces.h"
#include "platform/Clock.h"
#include "platform/ListeningSocket.h"
#include "platform/Sockets.h"

namespace {

using std::chrono::steady_clock;
using Vask::Platform::SystemSockets;

class CountingListener final : public Vask::IOnJsonMessageText {
 public:
  bool OnJsonMessageText(const char*) override {
    ++m_count;
    return true;
  }
  std::size_t Count() const { return m_count; }

 private:
  std::atomic<std::size_t> m_count{0};
};

// The link, and the end of the connection that feeds it.
class Feed {
 public:
  Feed() {
    m_link.SetTextListener(&m_listener);
    if (!m_listening.Open(0)) std::abort();
    m_link.SetPort(m_listening.Port());
    if (!m_link.OpenThread()) std::abort();
    m_handle = m_listening.Accept(60'000);
    if (m_handle == Vask::Platform::kInvalidSocket) std::abort();
  }
  ~Feed() {
    m_link.StopThread();
    SystemSockets().Close(m_handle);
  }
  Feed(const Feed&) = delete;
  Feed& operator=(const Feed&) = delete;

  // Sends frames until the link has read some, and for `length` after that. Returns the
  // number that the link read in a second.
  double FramesInASecond(const std::string& frame, steady_clock::duration length) {
    while (m_listener.Count() == 0) KeepAhead(frame);
    const std::size_t first = m_listener.Count();
    const auto begin = steady_clock::now();
    auto now = begin;
    for (; now - begin < length; now = steady_clock::now()) KeepAhead(frame);
    const std::chrono::duration<double> seconds = now - begin;
    return static_cast<double>(m_listener.Count() - first) / seconds.count();
  }

 private:
  void KeepAhead(const std::string& frame) {
    constexpr std::size_t kAheadBytes = 32'768;  // fit into the system's buffers
    const std::size_t ahead = std::max<std::size_t>(kAheadBytes / frame.size(), 2);
    for (; m_sent < m_listener.Count() + ahead; ++m_sent) {
      if (SystemSockets().Send(m_handle, frame.data(), frame.size()) < 0) std::abort();
    }
    Vask::Platform::SystemClock().SleepMs(1);
  }

  Vask::Platform::ListeningSocket m_listening;
  CountingListener m_listener;
  Vask::JsonSocket m_link;
  Vask::Platform::SocketHandle m_handle = Vask::Platform::kInvalidSocket;
  std::size_t m_sent = 0;
};

}  // namespace

int main(int count, char** arguments) {
  const std::chrono::milliseconds length(count > 1 ? std::strtol(arguments[1], nullptr, 10)
                                                   : 3'000);
  std::printf("%12s %14s %14s\n", "body, bytes", "frames/s", "bytes/s");
  for (const std::size_t bytes : {2U, 16U, 145U, 1'000U}) {
    std::string frame;
    Vask::AppendFrame(frame, std::string(bytes, 'x'));
    const double frames = Feed().FramesInASecond(frame, length);
    std::printf("%12zu %14.0f %14.0f\n", bytes, frames, frames * static_cast<double>(frame.size()));
    static_cast<void>(std::fflush(stdout));
  }
}
