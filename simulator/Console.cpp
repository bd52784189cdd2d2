#include "simulator/Console.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>

namespace Simulator {

namespace {

constexpr std::chrono::milliseconds kLineWait{50};

// False at the end of the input. A last line without a line end counts.
bool ReadLine(std::string& line) {
  line.clear();
  for (int c = std::getchar(); c != EOF; c = std::getchar()) {
    if (c == '\n') return true;
    line += static_cast<char>(c);
  }
  return !line.empty();
}

std::atomic<bool> g_came{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set in a signal handler");

// Windows removes the handler when it calls it, so this installs it again.
void Note(int signal) {
  g_came = true;
  static_cast<void>(std::signal(signal, &Note));
}

}  // namespace

struct StandardInputLines::Shared {
  std::mutex lock;
  std::condition_variable changed;
  std::deque<std::string> lines;
  bool ended = false;

  void Read() {
    std::string line;
    while (ReadLine(line)) Note([&] { lines.push_back(line); });
    Note([&] { ended = true; });
  }

  template <class Change>
  void Note(Change change) {
    const std::lock_guard guard(lock);
    change();
    changed.notify_all();
  }
};

StandardInputLines::StandardInputLines() : m_shared(new Shared) {
  std::thread([shared = m_shared] { shared->Read(); }).detach();
}

LineState StandardInputLines::NextLine(std::string& line) {
  std::unique_lock guard(m_shared->lock);
  m_shared->changed.wait_for(guard, kLineWait,
                             [&] { return !m_shared->lines.empty() || m_shared->ended; });
  if (m_shared->lines.empty()) return m_shared->ended ? LineState::Ended : LineState::Nothing;
  line = std::move(m_shared->lines.front());
  m_shared->lines.pop_front();
  return LineState::Read;
}

void CatchStopSignals() {
  static_cast<void>(std::signal(SIGINT, &Note));
  static_cast<void>(std::signal(SIGTERM, &Note));
}

bool StopSignalCame() {
  return g_came;
}

}  // namespace Simulator
