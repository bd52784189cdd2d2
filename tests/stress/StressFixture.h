#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "simulator/CorvaneServer.h"
#include "tests/support/DataFolder.h"
#include "tests/support/ForwardingClock.h"
#include "tests/support/ForwardingThreading.h"
#include "tests/support/RedirectedSockets.h"
#include "tests/support/TextRecorder.h"
#include "tests/support/WholeAgent.h"

namespace Agent::Tests {

// A fast clock for the timer service: the 15 seconds before the first request for
// an update take 30 milliseconds.
class HurriedClock final : public Vask::Tests::ForwardingClock {
 public:
  std::uint32_t TickMs() noexcept override { return ForwardingClock::TickMs() * 500; }
};

// Waits with a limit end at once, so that the waiting thread reads its clock.
class ImpatientThreading final : public Vask::Tests::ForwardingThreading {
 public:
  bool WaitEvent(Vask::Platform::NativeHandle event, std::uint32_t timeoutMs) noexcept override {
    const bool limited = timeoutMs != Vask::Platform::kInfinite;
    return ForwardingThreading::WaitEvent(event, limited ? std::min(timeoutMs, 1u) : timeoutMs);
  }
};

// Reads every byte that the log passes to it.
class ReadingListener final : public Vask::IDailyLog::IListener {
 public:
  using Block = Vask::IDailyLog::ILogDataBlock;

  void OnWarning(const Block* const* blocks, std::uint32_t count,
                 std::uint32_t totalLength) override {
    Read(blocks, count, totalLength);
  }
  void OnError(const Block* const* blocks, std::uint32_t count,
               std::uint32_t totalLength) override {
    Read(blocks, count, totalLength);
  }

  std::atomic<std::uint32_t> heard{0};
  std::atomic<std::uint32_t> wrongLengths{0};

 private:
  void Read(const Block* const* blocks, std::uint32_t count, std::uint32_t totalLength) {
    std::string text;
    for (std::uint32_t i = 0; i < count; ++i)
      for (const Block* block = blocks[i]; block != nullptr; block = block->Next())
        text.append(block->Data(), block->Length());
    if (text.size() != totalLength) ++wrongLengths;
    ++heard;
  }
};

// The whole agent on the machine's own threads, disk and network, with a Corvane
// server that the test plays. Other threads report their failures as lines of
// `complaints`.
class StressTest : public ::testing::Test {
 protected:
  StressTest() { EXPECT_TRUE(serverRuns); }

  void Complain(const std::string& text) { complaints.Add(text); }

  Vask::Tests::DataFolder files;
  Vask::Platform::Threading& threading = Vask::Platform::SystemThreading();
  HurriedClock hurried;
  ImpatientThreading impatient;
  Simulator::CorvaneServer server{{0, true, false, nullptr}};
  const bool serverRuns = server.Start();
  Vask::Tests::RedirectedSockets sockets{server.Port()};
  WholeAgent whole{{Vask::Platform::SystemClock(), files, sockets, threading, hurried, impatient}};
  Vask::Tests::TextRecorder complaints;
};

}  // namespace Agent::Tests
