#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/agent/AgentFixture.h"
#include "tests/support/ForwardingClock.h"
#include "tests/support/ForwardingThreading.h"
#include "tests/support/WholeAgent.h"

namespace Agent::Tests {

// The machine's threads. A test may let the n-th start fail, counted from 0. One thread
// starts and joins them.
class CountedThreading final : public Vask::Tests::ForwardingThreading {
 public:
  // Enough for every test, some of which let allocations fail.
  CountedThreading() {
    joined.reserve(256);
    m_started.reserve(256);
  }

  std::set<int> refusedStarts;
  std::function<void()> beforeStart;
  std::atomic<int> starts{0};
  std::atomic<int> joins{0};
  std::vector<int> joined;  // each thread by the number of its start

  Vask::Platform::NativeHandle StartThread(
      const Vask::Platform::ThreadEntry& entry) noexcept override {
    if (beforeStart) beforeStart();
    m_started.push_back(nullptr);
    if (refusedStarts.contains(starts++)) return nullptr;
    return m_started.back() = ForwardingThreading::StartThread(entry);
  }
  void JoinThread(Vask::Platform::NativeHandle thread,
                  Vask::Platform::NativeHandle finished) noexcept override {
    ++joins;
    const auto place = std::find(m_started.begin(), m_started.end(), thread);
    joined.push_back(static_cast<int>(place - m_started.begin()));
    ForwardingThreading::JoinThread(thread, finished);
  }

 private:
  std::vector<Vask::Platform::NativeHandle> m_started;
};

inline constexpr int kTimerThread = 0;
inline constexpr int kLinkThread = 1;

// Another clock, but a sleep takes real time: the link's thread must not retry
// without a pause.
class StillClock final : public Vask::Tests::ForwardingClock {
 public:
  using ForwardingClock::ForwardingClock;
  void SleepMs(std::uint32_t milliseconds) noexcept override {
    Vask::Platform::SystemClock().SleepMs(milliseconds);
  }
};

// The whole agent with a disk of its own and without a network: every attempt
// to connect fails.
class AgentProcessTest : public ::testing::Test {
 protected:
  // Lines of the log, without those that the link's thread adds at any time.
  std::vector<std::string> StartLines() {
    std::vector<std::string> lines;
    for (const std::string& line : files.Lines())
      if (line.find("Lost connection") == std::string::npos &&
          line.find("transmit queue") == std::string::npos)
        lines.push_back(line);
    return lines;
  }
  bool Has(const std::string& line) {
    const auto lines = files.Lines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }

  LogDisk files;
  CountedThreading threading;
  NoNetwork sockets;
  Vask::Tests::FakeClock clock;
  StillClock stillClock{clock};
  WholeAgent whole{{stillClock, files, sockets, threading, clock, threading}};
  AgentProcess& process = whole.process;
  SNMPExtensionAgent& agent = process.Extension();
  Vask::JsonSocket& link = process.Link();
  EntryPoints& entries = process.Entries();
};

}  // namespace Agent::Tests
