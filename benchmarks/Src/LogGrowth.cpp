// What the log costs, by the number of files in its folder and by the number of its
// listeners.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Src/DailyLog.h"
#include "tests/support/ForwardingClock.h"
#include "tests/support/TempFolder.h"

namespace {

using Vask::DailyLog;
using Vask::Platform::SystemFiles;

// The machine's clock, some days later.
struct LaterClock final : Vask::Tests::ForwardingClock {
  std::int64_t EpochSeconds() noexcept override {
    return ForwardingClock::EpochSeconds() + days * 86'400;
  }
  Vask::Platform::LocalTime LocalNow() noexcept override { return ToLocal(EpochSeconds()); }

  std::int64_t days = 0;
};

// A log in a folder with `others` files of other days, which were all made just now.
class FolderOfLogs {
 public:
  explicit FolderOfLogs(std::int64_t others) : m_others(others) {
    MakeOthers();
    m_isOpen = log.Open(m_folder.Path().c_str());
  }

  bool IsOpen() const { return m_isOpen; }
  void MakeOthers() const {
    for (std::int64_t i = 0; i < m_others; ++i) {
      std::ofstream(m_folder.NativePath() / ("Log-" + std::to_string(i) + ".log"));
    }
  }
  std::int64_t FileCount() const {
    return std::distance(std::filesystem::directory_iterator(m_folder.NativePath()), {});
  }
  void RemoveFileOfToday() {
    char date[Vask::kLogDateLength + 1] = "";
    Vask::FormatLogDate(clock.LocalNow(), date);
    std::filesystem::remove(m_folder.NativePath() / (std::string("Log") + date + ".log"));
  }

  LaterClock clock;
  DailyLog log{clock, SystemFiles()};

 private:
  const std::int64_t m_others;
  const Vask::Tests::TempFolder m_folder;
  bool m_isOpen = false;
};

// A clean-up that finds no old file. It also opens the file of the day again.
void KeepAllFiles(benchmark::State& state) {
  FolderOfLogs folder(state.range(0));
  if (!folder.IsOpen()) return state.SkipWithError("no log");
  for ([[maybe_unused]] const auto& iteration : state) folder.log.SetDaysToKeep(30);
}
BENCHMARK(KeepAllFiles)->RangeMultiplier(2)->Range(1, 10'000);

// A clean-up that deletes every file.
void DeleteAllFiles(benchmark::State& state) {
  FolderOfLogs folder(state.range(0));
  if (!folder.IsOpen()) return state.SkipWithError("no log");
  folder.clock.days = 40;
  for ([[maybe_unused]] const auto& iteration : state) {
    state.PauseTiming();
    folder.MakeOthers();
    state.ResumeTiming();
    folder.log.SetDaysToKeep(30);
  }
  if (folder.FileCount() > 1) state.SkipWithError("files are left");
}
BENCHMARK(DeleteAllFiles)->RangeMultiplier(2)->Range(1, 10'000);

// The first line of a day.
void Rotate(benchmark::State& state) {
  FolderOfLogs folder(state.range(0));
  if (!folder.IsOpen()) return state.SkipWithError("no log");
  folder.log.SetDaysToKeep(1'000'000);
  for ([[maybe_unused]] const auto& iteration : state) {
    state.PauseTiming();
    folder.RemoveFileOfToday();
    ++folder.clock.days;
    state.ResumeTiming();
    folder.log.Info("the first line\n");
  }
  if (folder.FileCount() != state.range(0) + 1) state.SkipWithError("no new file");
}
BENCHMARK(Rotate)->RangeMultiplier(2)->Range(1, 10'000);

struct Listener final : Vask::IDailyLog::IListener {
  void OnWarning(const Vask::IDailyLog::ILogDataBlock* const*, std::uint32_t,
                 std::uint32_t) override {}
  void OnError(const Vask::IDailyLog::ILogDataBlock* const*, std::uint32_t,
               std::uint32_t) override {
    ++calls;
  }

  std::int64_t calls = 0;
};

// A log without a file.
struct LogOfListeners {
  explicit LogOfListeners(std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) log.AddListener(&listener);
  }

  DailyLog log;
  Listener listener;
};

void NotifyListeners(benchmark::State& state) {
  LogOfListeners many(state.range(0));
  for ([[maybe_unused]] const auto& iteration : state) many.log.Error("an error\n");
  if (many.listener.calls == 0) state.SkipWithError("no call");
}
BENCHMARK(NotifyListeners)->RangeMultiplier(2)->Range(1, 1'000);

void AddAndRemoveListener(benchmark::State& state) {
  LogOfListeners many(state.range(0));
  Listener another;
  for ([[maybe_unused]] const auto& iteration : state) {
    many.log.AddListener(&another);
    many.log.RemoveListener(&another);
  }
}
BENCHMARK(AddAndRemoveListener)->RangeMultiplier(2)->Range(1, 1'000);

}  // namespace
