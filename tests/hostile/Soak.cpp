// soak [--minutes N] [--every SECONDS]: runs the module under every load and fault at
// once for N minutes.
//
// Pollers walk its variables and take its traps. A peer sends bad frames, floods,
// stays silent, drops the link and comes back. The soak renames and removes the log's
// files, lets system calls of the module fail, sets its clocks, wraps its tick count,
// and unloads and starts it again.
//
// It prints a table of memory, handles and threads over time, measured while the peer
// is silent. It fails if the module stops serving. A soak of ten minutes or more also
// fails if a column grows after the first quarter.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/Clock.h"
#include "tests/contract/Library.h"
#include "tests/hostile/FaultyImports.h"
#include "tests/hostile/Inputs.h"
#include "tests/hostile/Target.h"

namespace Hostile {

namespace {

using Vask::Platform::SystemClock;

// Managers: the module sees them as threads of the host.
class Pollers {
 public:
  explicit Pollers(Contract::Module& module) {
    for (int i = 0; i < 2; ++i) {
      m_threads.emplace_back([this, &module] {
        while (!m_stopping) Walk(module);
      });
    }
    m_threads.emplace_back([this, &module] {
      while (!m_stopping) {
        module.TakeTraps();
        SystemClock().SleepMs(50);
      }
    });
  }
  ~Pollers() {
    m_stopping = true;
    for (std::thread& thread : m_threads) thread.join();
  }
  Pollers(const Pollers&) = delete;
  Pollers& operator=(const Pollers&) = delete;

 private:
  // Without memory the module cannot move the name, and the walk stays where it is.
  void Walk(Contract::Module& module) {
    std::string name = "P";
    for (std::string answer = module.GetNext(name); !m_stopping && answer.starts_with("0 ");
         answer = module.GetNext(name)) {
      name = answer.substr(2, answer.find(" = ") - 2);
      module.Get(name);
    }
    SystemClock().SleepMs(200);
  }

  std::atomic<bool> m_stopping{false};
  std::vector<std::thread> m_threads;
};

// While one lives, calls of one kind fail for the module, sometimes or always.
class Spell {
 public:
  Spell(Fault fault, std::mt19937& random) {
    constexpr std::uint32_t kOneIn[] = {1, 2, 10, 50};
    const auto seed = static_cast<std::uint32_t>(random());
    g_faultSwitch.On(fault, kOneIn[random() % std::size(kOneIn)], seed);
  }
  ~Spell() { g_faultSwitch.Off(); }
  Spell(const Spell&) = delete;
  Spell& operator=(const Spell&) = delete;
};

struct Sample {
  double minutes;
  std::size_t heap;
  std::size_t resident;
  std::size_t handles;
  std::size_t threads;
};

class Soak {
 public:
  Soak(double minutes, double everySeconds)
      : m_lengthMs(minutes * 60'000), m_everyMs(everySeconds * 1'000) {
    m_samples.reserve(static_cast<std::size_t>(m_lengthMs / m_everyMs) + 2);  // never grows
  }

  // Returns the exit status.
  int Run() {
    std::printf("%8s %12s %12s %8s %8s %8s\n", "minutes", "heap KiB", "resident KiB", "handles",
                "threads", "rounds");
    while (PassedMs() < m_lengthMs) {
      const std::string wrong = LiveOnce();
      if (wrong.empty()) continue;
      std::printf("FAILED: %s\n0 passed, 1 failed\n", wrong.c_str());
      return 1;
    }
    PrintFaults();
    const int failed = Growths();
    std::printf("%d passed, %d failed\n", failed == 0 ? 1 : 0, failed);
    return failed == 0 ? 0 : 1;
  }

 private:
  static constexpr int kRoundsOfALife = 50;
  static constexpr std::size_t kLongest = 2'000;
  // In a shorter soak, memory that is allocated only once may still grow.
  static constexpr double kShortestToJudgeMs = 600'000;
  // The agent asks for an update only after seconds without a loss of the link.
  static constexpr std::uint32_t kRoundsUntilQuiet = 8;

  double PassedMs() const { return static_cast<double>(SystemClock().TickMs() - m_startMs); }

  // Starts, uses and unloads the module. Start and unload may meet faults.
  std::string LiveOnce() {
    std::optional<Spell> spellAtTheEnd;  // destroyed after the module
    Target target;
    PutFaultyImports(target.Module().Library());
    SetClocks();
    std::string began = target.Begin(StartsDespiteFaults(target));
    if (!began.empty()) return began;
    const Pollers pollers(target.Module());
    for (int i = 0; i < kRoundsOfALife && PassedMs() < m_lengthMs; ++i) {
      std::string what;
      const std::string wrong = Round(target, what);
      if (!wrong.empty()) return m_before + what + ": " + wrong + target.HowLinksEnded();
      m_before = "after " + what + ": ";
      ++m_rounds;
      if (PassedMs() >= m_nextSampleMs) TakeSample();
    }
    if (m_random() % 2 == 0) spellAtTheEnd.emplace(AnyFault(), m_random);
    return {};
  }

  // The tick count wraps within the module's first minute. The date is today's.
  static void SetClocks() {
    constexpr std::uint32_t kUntilWrapMs = 30'000;
    g_faultSwitch.tickShiftMs = 0u - SystemClock().TickMs() - kUntilWrapMs;
    g_faultSwitch.epochShiftSeconds = 0;
    g_faultSwitch.localShiftSeconds = 0;
  }

  // After a start that fails, another one is possible. A start that succeeds is complete,
  // except that its timers are missing if their thread could not be created.
  bool StartsDespiteFaults(Target& target) {
    m_hasTimers = true;
    if (m_random() % 2 == 0) return false;
    const Fault fault = AnyFault();
    const Spell spell(fault, m_random);
    const bool started = target.Module().Init().result;
    m_hasTimers = !started || fault != Fault::Threads;
    return started;
  }

  Fault AnyFault() { return static_cast<Fault>(m_random() % kFaultCount); }

  std::string Round(Target& target, std::string& what) {
    const auto take = [&](const Input& input) {
      what = input.name;
      return target.Take(input);
    };
    switch (m_random() % 12) {
      case 0:
        return take(RandomStream(m_random));
      case 1:
        what = "flood";
        return target.Flood(50, false);
      case 2:
        what = "peer that leaves and comes back";
        target.Peer().RefuseFor(std::chrono::milliseconds(300));
        return take({what, "", Then::PeerDrops});
      case 3:
        what = "log file renamed or removed";
        DisturbLog();
        return target.Serves();
      case 4:
      case 5:
        return take(DamagedFrame(m_random));
      case 6:
        return Suffer(target, what);
      case 7:
        what = "clock that is set";
        PutClock();
        return target.Serves();
      case 8:
        what = "request for an update";
        if (!m_hasTimers || m_random() % kRoundsUntilQuiet != 0) return target.Serves();
        return target.AnswersUpdate();
      default:
        return take(m_listed[m_random() % m_listed.size()]);
    }
  }

  // Calls of one kind fail while the peer sends and leaves, and managers ask. Afterwards
  // the module must serve again.
  std::string Suffer(Target& target, std::string& what) {
    {
      const Fault fault = AnyFault();
      what = std::string("fault of ") + kFaultNames[static_cast<std::size_t>(fault)];
      const Spell spell(fault, m_random);
      for (int i = 0; i < 5; ++i) target.Peer().Send(StreamsFrame(Target::kForeignStreams, i % 2));
      if (m_random() % 2 == 0) target.Peer().Drop();
      for (int i = 0; i < 5; ++i) {
        target.Module().Get("P.1.0");
        target.Module().TakeTraps();
        SystemClock().SleepMs(20);
      }
    }
    return target.Serves(false);
  }

  // Sets the clock a day or an hour of summer time forward or back, or to just before
  // midnight.
  void PutClock() {
    constexpr std::int64_t kHour = 3'600;
    constexpr std::int64_t kDay = 24 * kHour;
    const Vask::Platform::LocalTime now = SystemClock().LocalNow();
    const std::int64_t ofDay = (now.hour * 60 + now.minute) * 60 + now.second;
    const struct {
      std::int64_t epoch;
      std::int64_t local;
    } rows[] = {{kDay, kDay},
                {-kDay, -kDay},
                {0, kHour},
                {0, -kHour},
                {kDay - ofDay - 2, kDay - ofDay - 2}};
    const auto& row = rows[m_random() % std::size(rows)];
    g_faultSwitch.epochShiftSeconds = row.epoch;
    g_faultSwitch.localShiftSeconds = row.local;
  }

  // Renames or removes today's file while it is open, if the system permits it.
  void DisturbLog() {
    std::error_code ignored;
    const std::filesystem::path folder = Contract::LogFolder::Path();
    for (const auto& file : std::filesystem::directory_iterator(folder, ignored)) {
      if (m_random() % 2 == 0) {
        std::filesystem::rename(file.path(), folder / "aside", ignored);
      } else {
        std::filesystem::remove(file.path(), ignored);
      }
    }
  }

  static void PrintFaults() {
    std::printf("system calls that failed:");
    for (std::size_t i = 0; i < kFaultCount; ++i)
      std::printf(" %zu %s%s", g_faultSwitch.Struck(i), kFaultNames[i],
                  i + 1 < kFaultCount ? "," : "\n");
  }

  void TakeSample() {
    m_nextSampleMs = PassedMs() + m_everyMs;
    SystemClock().SleepMs(300);
    const Sample sample{PassedMs() / 60'000, Contract::HeldMemory(), Contract::ResidentMemory(),
                        Contract::OpenHandles(), Contract::RunningThreads()};
    m_samples.push_back(sample);
    std::printf("%8.2f %12zu %12zu %8zu %8zu %8zu\n", sample.minutes, sample.heap / 1024,
                sample.resident / 1024, sample.handles, sample.threads, m_rounds);
  }

  // Compares the medians of the second and the last quarter of the time. So a temporary
  // state, such as a start without a thread or a log without its file, does not count.
  int Growths() const {
    const struct {
      const char* name;
      std::size_t Sample::*value;
      std::size_t allowance;
      bool counts;
    } rows[] = {
        {"heap", &Sample::heap, 32 * 1024, true},
        {"resident", &Sample::resident, 1024 * 1024, !kSanitized},
        {"handles", &Sample::handles, 0, true},
        {"threads", &Sample::threads, 0, true},
    };
    int failed = 0;
    for (const auto& row : rows) {
      const std::size_t early = Middle(row.value, 0.25, 0.5);
      const std::size_t late = Middle(row.value, 0.75, 1);
      const bool grew =
          row.counts && m_lengthMs >= kShortestToJudgeMs && late > early + row.allowance;
      std::printf("%-9s %10zu in the second quarter, %10zu in the last%s\n", row.name, early, late,
                  grew ? "  FAILED: grew" : "");
      failed += grew ? 1 : 0;
    }
    return failed;
  }

  std::size_t Middle(std::size_t Sample::*value, double from, double to) const {
    const double length = m_lengthMs / 60'000;
    std::vector<std::size_t> values;
    for (const Sample& sample : m_samples) {
      if (sample.minutes < from * length || sample.minutes > to * length + 1) continue;
      values.push_back(sample.*value);
    }
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
  }

  const double m_lengthMs;
  const double m_everyMs;
  const std::uint32_t m_startMs = SystemClock().TickMs();
  const std::vector<Input> m_listed = ListedInputs(kLongest);
  std::mt19937 m_random{3};
  bool m_hasTimers = true;
  std::string m_before;  // description of the round before
  double m_nextSampleMs = 0;
  std::size_t m_rounds = 0;
  std::vector<Sample> m_samples;
};

}  // namespace

}  // namespace Hostile

int main(int argc, char** argv) {
  double minutes = 1;
  double every = 10;
  for (int i = 1; i + 1 < argc; i += 2) {
    (std::string(argv[i]) == "--minutes" ? minutes : every) = std::atof(argv[i + 1]);
  }
  if (minutes <= 0 || every <= 0) return 2;
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  Contract::CountWholeHeap();
  return Hostile::Soak(minutes, every).Run();
}
