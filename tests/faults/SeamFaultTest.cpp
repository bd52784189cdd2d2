// The n-th call of the operating system fails, for every n, on every road of the
// agent: its start, a frame, a request, a trap, a line of the log.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Src/LogPrinter.h"
#include "tests/faults/FaultStand.h"

namespace Agent::Tests {

namespace {

using Vask::LogPrinter;
using Vask::Tests::Binding;
using Vask::Tests::FaultPlan;
using Vask::Tests::ForEveryFault;

constexpr std::int64_t kDayMs = 86'400'000;

// How often `part` stands in `text`. A line that a day begins in the middle of
// goes on in the next file.
int CountIn(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
    ++count;
  return count;
}

class SeamFaultTest : public ::testing::Test {
 protected:
  SeamFaultTest() { LogPrinter::Instance().SetConsole(false); }
  ~SeamFaultTest() override { LogPrinter::Instance().SetConsole(true); }

  // The next good call works: a start where there was none, a walk, a Get.
  static void ExpectWhole(FaultStand& stand, bool started) {
    if (!started) {
      EXPECT_EQ(stand.Init(), TRUE);
    }
    EXPECT_EQ(stand.Walk(), kWholeWalk);
    EXPECT_EQ(stand.GetAll(), UpdatedValues());
  }

  static void ExpectSocketsGivenBack(FaultStand& stand) {
    stand.whole.process.Link().StopThread();
    EXPECT_EQ(stand.peer.opened, stand.peer.closed);
  }
};

TEST_F(SeamFaultTest, WithoutAFaultTheUpdateArrivesAndItsTrapsAreRaised) {
  FaultStand stand;
  EXPECT_EQ(stand.Init(), TRUE);
  EXPECT_EQ(stand.TakeTraps(), kTrapsOfUpdate);
  ExpectWhole(stand, true);
  EXPECT_EQ(stand.CountLines("Error: GetIntProperty: Property 'Count' not found"), 1);
  ExpectSocketsGivenBack(stand);
}

// A start either works or fails silently, and then nothing was done but folders.
// Either way the next one does all of it.
TEST_F(SeamFaultTest, StartFailsWholeOrNotAtAllWhicheverCallOfTheDiskFails) {
  const int faults = ForEveryFault([](int n) {
    SCOPED_TRACE("call " + std::to_string(n));
    FaultStand stand;
    stand.filesPlan.FailAt(n);
    const bool started = stand.Init() == TRUE;
    const bool reached = stand.filesPlan.Reached();
    stand.filesPlan.FailNever();
    EXPECT_EQ(stand.whole.process.Extension().Variables().Find("LinkStatus") != nullptr, started);
    EXPECT_EQ(stand.peer.connections > 0, started);
    if (!started) {
      EXPECT_EQ(stand.LogLines(), Lines{});
    }
    ExpectWhole(stand, started);
    return reached;
  });
  EXPECT_GT(faults, 100);
}

// An event that cannot be had at first is tried for again; a thread that cannot
// be had costs what needs it and no more.
TEST_F(SeamFaultTest, StartNamesWhatIsMissingWhicheverEventOrThreadFails) {
  struct Row {
    const char* what;
    BOOL starts;
  };
  const Row rows[] = {
      {"the timer thread's first event", TRUE},
      {"the timer thread's last event", TRUE},
      {"the timers' wake-up event", TRUE},
      {"the trap event", TRUE},
      {"the link thread's first event", TRUE},
      {"the link thread's last event", TRUE},
      {"the event of the reader that leaves", TRUE},
      {"the timer thread", TRUE},
      {"the link thread", FALSE},
  };
  const int faults = ForEveryFault([&](int n) {
    const Row& row = rows[std::min(static_cast<std::size_t>(n), std::size(rows)) - 1];
    SCOPED_TRACE(row.what);
    FaultStand stand(n);
    HANDLE event = nullptr;
    AsnObjectIdentifier view{0, nullptr};
    const BOOL started = stand.whole.process.Entries().Init(&event, &view);
    if (!stand.threadingPlan.Reached()) return false;
    EXPECT_EQ(started, row.starts);
    EXPECT_NE(event, nullptr);
    EXPECT_EQ(view.idLength, 8u);
    const int missing = row.starts == TRUE ? 0 : 1;
    EXPECT_EQ(stand.CountLines("Error: Vask::JsonSocket::OpenThread open failed"), missing);
    EXPECT_EQ(stand.CountLines("Error: Unable to open JsonSocket!"), missing);
    EXPECT_EQ(stand.Walk(), kWholeWalk);
    EXPECT_EQ(stand.GetAll(), row.starts == TRUE ? UpdatedValues() : FirstValues());
    EXPECT_EQ(stand.TakeTraps(), row.starts == TRUE ? kTrapsOfUpdate : Traps{});
    return true;
  });
  // Two threads are two more calls that every good start makes.
  EXPECT_EQ(faults, static_cast<int>(std::size(rows)));
}

TEST_F(SeamFaultTest, StartFailsWhileThereAreNoEventsAndWorksOnceThereAre) {
  FaultStand stand(FaultStand::kAllEvents);
  EXPECT_EQ(stand.Init(), FALSE);
  EXPECT_EQ(stand.whole.process.Extension().Traps().EventHandle(), nullptr);
  stand.threadingPlan.FailNever();
  ExpectWhole(stand, false);
  EXPECT_NE(stand.whole.process.Extension().Traps().EventHandle(), nullptr);
  ExpectSocketsGivenBack(stand);
}

TEST_F(SeamFaultTest, StartCanBeTriedAgainAfterAThreadFailed) {
  FaultStand stand(9);
  ASSERT_EQ(stand.Init(), FALSE);
  ExpectWhole(stand, false);
  ExpectSocketsGivenBack(stand);
}

// Whatever fails costs the connection at most, and the next one brings all.
TEST_F(SeamFaultTest, FramesArriveWhicheverCallOfTheSocketsFails) {
  using Vask::Platform::Disconnection;
  const auto run = [](int n, Disconnection end) {
    SCOPED_TRACE("call " + std::to_string(n));
    FaultStand stand;
    stand.sockets.disconnection = end;
    stand.socketsPlan.FailAt(n);
    EXPECT_EQ(stand.Init(), TRUE);
    ExpectSocketsGivenBack(stand);
    const bool reached = stand.socketsPlan.Reached();
    const Traps traps = stand.TakeTraps();
    for (const AsnInteger trap : {13, 15, 17})
      EXPECT_EQ(std::count(traps.begin(), traps.end(), trap), 1) << trap;
    EXPECT_EQ(stand.GetAll(), UpdatedValues());
    EXPECT_EQ(stand.Walk(), kWholeWalk);
    if (stand.sockets.disconnectionsFailed == 0) return std::make_pair(reached, false);
    const char* const line =
        end == Disconnection::Raised
            ? "Error: Socket close: Exception while calling DisconnectEx!"
            : "Error: Socket close: Error doing WSAIoctl to load DisconnectEx!";
    return std::make_pair(reached, stand.CountLines(line) == 1);
  };
  int lines = 0;
  const int faults = ForEveryFault([&](int n) {
    const auto [reached, said] = run(n, Disconnection::NotAvailable);
    if (said && run(n, Disconnection::Raised).second) ++lines;
    return reached;
  });
  EXPECT_GT(faults, 1'000);
  EXPECT_EQ(lines, 1) << "the end of the link; the start's first socket says nothing";
}

// The log is not what the agent stands on: requests and frames go on, and what
// is missing of the log is what could not be written.
TEST_F(SeamFaultTest, RequestsAndTrapsAreAnsweredWhicheverCallOfTheDiskFails) {
  const int faults = ForEveryFault([](int n) {
    SCOPED_TRACE("call " + std::to_string(n));
    FaultStand stand;
    EXPECT_EQ(stand.Init(), TRUE);
    stand.clock.clock.Advance(kDayMs);  // the first line opens another file
    stand.filesPlan.FailAt(n);
    EXPECT_EQ(stand.GetAll(), UpdatedValues());
    EXPECT_EQ(stand.TakeTraps(), kTrapsOfUpdate);
    EXPECT_EQ(stand.Walk(), kWholeWalk);
    const bool reached = stand.filesPlan.Reached();
    stand.filesPlan.FailNever();
    // A rotation that fails leaves the log without a file until it is opened.
    stand.whole.log.SetDaysToKeep(30);
    EXPECT_EQ(stand.Get("P.2.0"), "P.2.0 = INT 12");
    EXPECT_EQ(stand.LogLines().back(), "Info: GetStoredVar(StreamsCount) = INT: 12");
    return reached;
  });
  EXPECT_GT(faults, 100);
}

// A piece that the disk does not take is lost; every other is there, once.
TEST_F(SeamFaultTest, LogLosesNothingButThePieceThatTheDiskRefused) {
  const auto write = [](FaultPlan& plan, int n) {
    FaultStand stand;
    EXPECT_EQ(stand.Init(), TRUE);
    stand.whole.process.Link().StopThread();
    const std::size_t before = stand.LogLines().size();
    plan.FailNever();
    stand.filesPlan.FailAt(n);
    for (int i = 0; i < 3; ++i) LogPrinter::Instance().Info("line %d\n", i);
    const bool reached = stand.filesPlan.Reached();
    std::string bytes;
    const auto lines = stand.LogLines();
    for (std::size_t i = before; i < lines.size(); ++i) bytes += lines[i] + "|";
    return std::make_pair(reached, bytes);
  };
  FaultPlan unused;
  const std::string all = write(unused, 0).second;
  EXPECT_EQ(all, "Info: line 0|Info: line 1|Info: line 2|");
  const int faults = ForEveryFault([&](int n) {
    const auto [reached, bytes] = write(unused, n);
    if (reached) {
      EXPECT_LT(bytes.size(), all.size() + 14) << bytes;
    }
    for (int i = 0; i < 3; ++i) {
      const bool refused = reached && (n - 1) / 3 == i;
      const bool there = bytes.find("Info: line " + std::to_string(i)) != std::string::npos;
      if (!refused) {
        EXPECT_TRUE(there) << n << ": " << bytes;
      }
    }
    return reached;
  });
  EXPECT_EQ(faults, 9) << "three pieces each";
}

// Time that jumps changes time stamps and the file, nothing else.
TEST_F(SeamFaultTest, NothingIsLostWheneverTheClockJumps) {
  struct Row {
    const char* what;
    std::int64_t epochJumpMs;
    std::uint32_t tickJumpMs;
  };
  const Row rows[] = {
      {"forwards a day", kDayMs, 0},
      {"forwards a year", 365 * kDayMs, 0},
      {"backwards a day", -kDayMs, 0},
      {"the tick wraps", 0, 0xFFFFFF00u},
  };
  for (const Row& row : rows) {
    const int faults = ForEveryFault([&row](int n) {
      SCOPED_TRACE(std::string(row.what) + ", reading " + std::to_string(n));
      FaultStand stand;
      stand.clock.epochJumpMs = row.epochJumpMs;
      stand.clock.tickJumpMs = row.tickJumpMs;
      stand.clockPlan.FailAt(n);
      EXPECT_EQ(stand.Init(), TRUE);
      EXPECT_EQ(stand.GetAll(), UpdatedValues());
      EXPECT_EQ(stand.TakeTraps(), kTrapsOfUpdate);
      const bool reached = stand.clockPlan.Reached();
      // After a year the clean-up takes the first day's file along.
      if (row.epochJumpMs > 30 * kDayMs) return reached;
      const std::string text = stand.LogText();
      for (const std::string part :
           {"Update streams: count=12, errors=1\n", "GetStoredVar(StreamsCount) = INT: 12\n",
            "Extension agent started!\n"})
        EXPECT_EQ(CountIn(text, part), 1) << part << text;
      return reached;
    });
    EXPECT_GT(faults, 100) << row.what;
  }
}

}  // namespace

}  // namespace Agent::Tests
