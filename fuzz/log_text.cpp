// Logs texts of any content and length. Compares the file of the day, the history that
// listeners get, and the syslog datagram with the input.

#include <deque>
#include <string>

#include "Src/DailyLog.h"
#include "Src/SyslogSender.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"
#include "tests/support/MemoryFiles.h"

namespace {

using Vask::DailyLog;
using Blocks = const Vask::IDailyLog::ILogDataBlock* const*;

constexpr char kStamp[] = "12:00:00.000: ";
constexpr std::size_t kHistory = 20;

// Joins the pieces of every message.
class Reader final : public Vask::IDailyLog::IListener {
 public:
  void OnWarning(Blocks blocks, std::uint32_t count, std::uint32_t totalLength) override {
    messages.clear();
    std::size_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
      std::string message;
      for (const auto* piece = blocks[i]; piece != nullptr; piece = piece->Next()) {
        FUZZ_EXPECT(piece->Length() > 0 && piece->Length() <= 128);
        message.append(piece->Data(), piece->Length());
      }
      total += message.size();
      messages.push_back(message);
    }
    FUZZ_EXPECT(total == totalLength);
  }
  void OnError(Blocks blocks, std::uint32_t count, std::uint32_t totalLength) override {
    OnWarning(blocks, count, totalLength);
  }
  std::deque<std::string> messages;
};

struct Level {
  const char* prefix;
  const char* priority;
  void (DailyLog::*write)(const char* text);
};
constexpr Level kLevels[] = {
    {"Error: ", "<131>", &DailyLog::Error},
    {"Warning: ", "<132>", &DailyLog::Warning},
    {"Info: ", "<134>", &DailyLog::Info},
    {"TRACE: ", "<131>", &DailyLog::Trace},
};

void ExpectDatagram(const Level& level, const std::string& text) {
  char datagram[Vask::kSyslogCapacity];
  const std::size_t length = Vask::BuildSyslogDatagram(level.prefix, text, datagram);
  const std::string whole = std::string(level.priority) + level.prefix + text;
  FUZZ_EXPECT(std::string(datagram, length) == whole.substr(0, Vask::kSyslogCapacity));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Vask::Fuzz::Input input(data, size);
  Vask::Tests::FakeClock clock;
  Vask::Tests::MemoryFiles files;
  Vask::Tests::FaultySockets sockets;
  files.folders.insert("C:\\logs");
  Reader reader;
  DailyLog log(clock, files, sockets);
  FUZZ_EXPECT(log.Open("C:\\logs"));
  log.AddListener(&reader);

  std::string written;
  std::deque<std::string> recent;
  while (!input.AtEnd()) {
    const Level& level = kLevels[input.Byte() % 4];
    std::string text;
    for (std::size_t times = 1 + input.Byte() % 40u, part = 0; part < times; ++part) text += "ab%s";
    text += input.Text();
    (log.*level.write)(text.c_str());

    const std::string line = std::string(kStamp) + level.prefix + text;
    written += line;
    recent.push_back(line);
    if (recent.size() > kHistory) recent.pop_front();
    if (level.prefix[0] == 'E' || level.prefix[0] == 'W') FUZZ_EXPECT(reader.messages == recent);
    ExpectDatagram(level, text);
  }
  FUZZ_EXPECT(files.files.begin()->second.bytes == written);
  return 0;
}
