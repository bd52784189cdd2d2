#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spdlog/sinks/daily_file_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <memory>
#include <string_view>

#include "Src/DailyLog.h"
#include "Src/LogPrinter.h"
#include "tests/support/TempFolder.h"

// Times one line of the log, which makes three system calls. Compares it with the bare
// system calls, and with spdlog's daily file sink with a flush after every line, which
// makes one system call and keeps no history. Each writes some lines before it is timed,
// so that the history has all its chunks and the file its first page.

namespace {

constexpr char kName[] = "1.3.6.1.4.1.99999.333.1.0";  // as long as the name of a variable
constexpr int kLinesBefore = 40;
constexpr char kText[] = "GetRequest(1.3.6.1.4.1.99999.333.1.0)\n";

void LineOurs(benchmark::State& state) {
  const Vask::Tests::TempFolder folder;
  Vask::DailyLog log;
  if (!log.Open(folder.Path().c_str())) return state.SkipWithError("no log");
  for (int i = 0; i < kLinesBefore; ++i) log.Info(kText);
  for (auto _ : state) log.Info(kText);
}
BENCHMARK(LineOurs);

void LinePrinted(benchmark::State& state) {
  const Vask::Tests::TempFolder folder;
  Vask::DailyLog log;
  if (!log.Open(folder.Path().c_str())) return state.SkipWithError("no log");
  Vask::LogPrinter printer;
  printer.SetTarget(&log);
  for (int i = 0; i < kLinesBefore; ++i) printer.Info("GetRequest(%s)\n", kName);
  for (auto _ : state) printer.Info("GetRequest(%s)\n", kName);
}
BENCHMARK(LinePrinted);

bool WriteThreePieces(int file) {
  for (const std::string_view piece :
       {std::string_view("12:00:00.000: "), std::string_view("Info: "), std::string_view(kText)}) {
    if (write(file, piece.data(), piece.size()) < 0) return false;
  }
  return true;
}

void LineThreeWrites(benchmark::State& state) {
  const Vask::Tests::TempFolder folder;
  const int file = open((folder.NativePath() / "bare.log").c_str(),
                        O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (file < 0) return state.SkipWithError("no file");
  for (int i = 0; i < kLinesBefore; ++i) {
    if (!WriteThreePieces(file)) return state.SkipWithError("no write");
  }
  for (auto _ : state) {
    if (!WriteThreePieces(file)) return state.SkipWithError("no write");
  }
  close(file);
}
BENCHMARK(LineThreeWrites);

void LineSpdlog(benchmark::State& state) {
  const Vask::Tests::TempFolder folder;
  const auto path = (folder.NativePath() / "spdlog.log").string();
  spdlog::logger logger("log", std::make_shared<spdlog::sinks::daily_file_sink_mt>(path, 0, 0));
  logger.set_pattern("%H:%M:%S.%e: Info: %v");
  logger.flush_on(spdlog::level::trace);
  const std::string_view text(kText, sizeof kText - 2);  // it adds the line end
  for (int i = 0; i < kLinesBefore; ++i) logger.info(text);
  for (auto _ : state) logger.info(text);
}
BENCHMARK(LineSpdlog);

}  // namespace
