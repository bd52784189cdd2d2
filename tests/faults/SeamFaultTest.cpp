// The n-th call of the operating system fails, for every n and each activity of
// the agent: its start, a frame, a request, a trap, a line of the log.

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
using Vask::Tests::FaultPlan;
using Vask::Tests::ForEveryFault;

constexpr std::int64_t kDayMs = 86'400'000;

// How often `text` contains `part`. If a new day begins within a line, the rest of
// the line is in the next file, which follows in `text`.
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

  // The next calls succeed: a start if the first one failed, a walk, a Get.
  static void ExpectWhole(FaultStand& stand, bool started) {
    if (!started) {
      EXPECT_EQ(stand.Init(), TRUE);
    }
    EXPECT_EQ(stand.Walk(), kWholeWalk);
    EXPECT_EQ(stand.GetAll(), UpdatedValues());
  }

  static void ExpectSocketsClosed(FaultStand& stand) {
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
  ExpectSocketsClosed(stand);
}

// A start either succeeds, or fails silently and has only created folders. If it
// failed, the next one does everything.
TEST_F(SeamFaultTest, StartSucceedsOrChangesNothingIfACallOfTheDiskFails) {
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

// The agent creates a missing event later. A missing thread affects only its own
// work.
TEST_F(SeamFaultTest, StartLogsTheMissingThreadIfAnEventOrThreadFails) {
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
  // The last two rows are the two threads.
  EXPECT_EQ(faults, static_cast<int>(std::size(rows)));
}

TEST_F(SeamFaultTest, StartFailsWithoutEventsAndSucceedsWithThem) {
  FaultStand stand(FaultStand::kAllEvents);
  EXPECT_EQ(stand.Init(), FALSE);
  EXPECT_EQ(stand.whole.process.Extension().Traps().EventHandle(), nullptr);
  stand.threadingPlan.FailNever();
  ExpectWhole(stand, false);
  EXPECT_NE(stand.whole.process.Extension().Traps().EventHandle(), nullptr);
  ExpectSocketsClosed(stand);
}

TEST_F(SeamFaultTest, StartSucceedsAfterAThreadFailed) {
  FaultStand stand(9);
  ASSERT_EQ(stand.Init(), FALSE);
  ExpectWhole(stand, false);
  ExpectSocketsClosed(stand);
}

// A failing call ends the connection at most, and the next one brings all values.
TEST_F(SeamFaultTest, FramesArriveIfACallOfTheSocketsFails) {
  using Vask::Platform::Disconnection;
  const auto run = [](int n, Disconnection end) {
    SCOPED_TRACE("call " + std::to_string(n));
    FaultStand stand;
    stand.sockets.disconnection = end;
    stand.socketsPlan.FailAt(n);
    EXPECT_EQ(stand.Init(), TRUE);
    ExpectSocketsClosed(stand);
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
  EXPECT_EQ(lines, 1) << "the end of the link logs this; the first socket of the start does not";
}

// Requests and traps do not depend on the log. The log lacks only what it could
// not write.
TEST_F(SeamFaultTest, RequestsAndTrapsSucceedIfACallOfTheDiskFails) {
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
    // After a failed change of the day the log has no file until this opens one.
    stand.whole.log.SetDaysToKeep(30);
    EXPECT_EQ(stand.Get("P.2.0"), "P.2.0 = INT 12");
    EXPECT_EQ(stand.LogLines().back(), "Info: GetStoredVar(StreamsCount) = INT: 12");
    return reached;
  });
  EXPECT_GT(faults, 100);
}

// A piece that the disk refuses is lost; every other one is there once.
TEST_F(SeamFaultTest, LogLosesOnlyThePieceThatTheDiskRefuses) {
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

// A jump of the clock changes only the time stamps and the file.
TEST_F(SeamFaultTest, NothingIsLostIfTheClockJumps) {
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
      // After a year the clean-up has deleted the file of the first day.
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
