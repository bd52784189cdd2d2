// Logs texts of any content and length, while a listener comes and goes. Compares the file
// of the day, the history that the listener gets, and the syslog datagram with the input.

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "Src/DailyLog.h"
#include "Src/SyslogSender.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"

namespace {

using Vask::DailyLog;
using Blocks = const Vask::IDailyLog::ILogDataBlock* const*;

constexpr char kStamp[] = "12:00:00.000: ";
constexpr std::size_t kHistory = 20;

// A disk with every folder and one file.
class OneFile final : public Vask::Platform::Files {
 public:
  std::string bytes;

  bool IsFolder(const char*) noexcept override { return true; }
  Vask::Platform::DriveKind Drive(const char*) noexcept override {
    return Vask::Platform::DriveKind::Fixed;
  }
  bool CreateFolder(const char*) noexcept override { return false; }
  bool List(const char*, Vask::Platform::FileVisitor, void*) noexcept override { return true; }
  bool Delete(const char*) noexcept override { return false; }
  Vask::Platform::FileHandle OpenForAppend(const char*) noexcept override { return 1; }
  bool Append(Vask::Platform::FileHandle, const char* text, std::size_t length) noexcept override {
    bytes.append(text, length);
    return true;
  }
  std::uint64_t Length(Vask::Platform::FileHandle) noexcept override { return bytes.size(); }
  void Close(Vask::Platform::FileHandle) noexcept override {}
  Vask::Platform::FileHandle StandardOutput() noexcept override { return Vask::Platform::kNoFile; }
  bool CurrentFolder(char*, std::size_t) noexcept override { return false; }
  bool CommonApplicationData(char*, std::size_t) noexcept override { return false; }
};

// The lines that the log's history must hold.
class RecentLines {
 public:
  void Clear() { m_added = 0; }
  void Add(const std::string& line) { m_lines[m_added++ % kHistory] = line; }
  [[nodiscard]] std::size_t Count() const { return std::min(m_added, kHistory); }
  // 0 is the oldest.
  [[nodiscard]] const std::string& operator[](std::size_t place) const {
    return m_lines[(m_added - Count() + place) % kHistory];
  }

 private:
  std::array<std::string, kHistory> m_lines;
  std::size_t m_added = 0;
};

// Compares every message of the history with the recent lines, piece by piece.
class Reader final : public Vask::IDailyLog::IListener {
 public:
  explicit Reader(const RecentLines& recent) : m_recent(recent) {}

  void OnWarning(Blocks blocks, std::uint32_t count, std::uint32_t totalLength) override {
    ++calls;
    FUZZ_EXPECT(count == m_recent.Count());
    std::size_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
      ExpectSame(blocks[i], m_recent[i]);
      total += m_recent[i].size();
    }
    FUZZ_EXPECT(total == totalLength);
  }
  void OnError(Blocks blocks, std::uint32_t count, std::uint32_t totalLength) override {
    OnWarning(blocks, count, totalLength);
  }

  std::size_t calls = 0;

 private:
  static void ExpectSame(const Vask::IDailyLog::ILogDataBlock* piece, std::string_view rest) {
    for (; piece != nullptr; piece = piece->Next()) {
      FUZZ_EXPECT(piece->Length() > 0 && piece->Length() <= 128);
      FUZZ_EXPECT(rest.starts_with(std::string_view(piece->Data(), piece->Length())));
      rest.remove_prefix(piece->Length());
    }
    FUZZ_EXPECT(rest.empty());
  }

  const RecentLines& m_recent;
};

struct Level {
  const char* prefix;
  const char* priority;
  bool notifies;
  void (DailyLog::*write)(const char* text);
};
constexpr Level kLevels[] = {
    {"Error: ", "<131>", true, &DailyLog::Error},
    {"Warning: ", "<132>", true, &DailyLog::Warning},
    {"Info: ", "<134>", false, &DailyLog::Info},
    {"TRACE: ", "<131>", false, &DailyLog::Trace},
};

// `line` is the level's prefix and the text.
void ExpectDatagram(const Level& level, const std::string& text, std::string_view line) {
  char datagram[Vask::kSyslogCapacity];
  const std::size_t length = Vask::BuildSyslogDatagram(level.prefix, text, datagram);
  const std::size_t priority = std::strlen(level.priority);
  FUZZ_EXPECT(length == std::min(priority + line.size(), Vask::kSyslogCapacity));
  const std::string_view sent(datagram, length);
  FUZZ_EXPECT(sent.starts_with(level.priority) && line.starts_with(sent.substr(priority)));
}

// Repeats a short text, up to 496 times, before the text of the input. So one byte makes a
// text long, and many texts fit into a short input.
void ReadText(Vask::Fuzz::Input& input, std::string& text) {
  static const std::string repeated = [] {
    std::string all;
    for (int i = 0; i < 496; ++i) all += "ab%s";
    return all;
  }();
  const std::size_t byte = input.Byte();
  text.assign(repeated, 0, 4 * (byte < 252 ? 1 + byte % 40 : (byte - 251) * 124));
  text += input.Text();
}

// Kept from one input to the next, because allocations take most of the time of a run.
struct Stand {
  Vask::Tests::FakeClock clock;
  OneFile file;
  RecentLines recent;
  std::string text;
  std::string line;
  std::string written;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Stand stand;
  stand.file.bytes.clear();
  stand.recent.Clear();
  stand.written.clear();
  Reader reader(stand.recent);
  Vask::Tests::FaultySockets sockets;
  DailyLog log(stand.clock, stand.file, sockets);
  FUZZ_EXPECT(log.Open("C:\\logs"));

  Vask::Fuzz::Input input(data, size);
  bool listens = false;
  std::size_t notified = 0;
  while (!input.AtEnd()) {
    const std::uint8_t control = input.Byte();
    const Level& level = kLevels[control % 4];
    if (listens != (control < 64)) {
      listens = !listens;
      listens ? log.AddListener(&reader) : log.RemoveListener(&reader);
    }
    ReadText(input, stand.text);
    stand.line.assign(kStamp).append(level.prefix).append(stand.text);
    stand.recent.Add(stand.line);
    stand.written += stand.line;

    (log.*level.write)(stand.text.c_str());
    notified += listens && level.notifies ? 1 : 0;
    FUZZ_EXPECT(reader.calls == notified);
    ExpectDatagram(level, stand.text, std::string_view(stand.line).substr(sizeof kStamp - 1));
  }
  FUZZ_EXPECT(stand.file.bytes == stand.written);
  return 0;
}
