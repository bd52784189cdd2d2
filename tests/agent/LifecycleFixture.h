#pragma once

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Src/DailyLog.h"
#include "Src/ErrReporter.h"
#include "Src/TimerService.h"
#include "agent/EntryPoints.h"
#include "agent/Lifecycle.h"
#include "agent/MyConnectNotify.h"
#include "messages/Registrar.h"
#include "net/JsonSocket.h"
#include "platform/Files.h"
#include "tests/agent/AgentFixture.h"
#include "tests/agent/NoNetwork.h"
#include "tests/support/ForwardingThreading.h"

namespace Agent::Tests {

// A disk for one log: folders may be created or refused, and what is written is
// kept in a buffer of its own, so that it works without memory too. Any thread
// may write.
class StartFiles final : public Vask::Platform::Files {
 public:
  std::string commonData = "C:\\Data";  // empty: there is none
  std::set<std::string> refused;
  bool opensFiles = true;
  std::vector<std::string> created;

  std::vector<std::string> Lines() {
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> lines;
    const char* start = m_text;
    for (const char* end; (end = std::strchr(start, '\n')) != nullptr; start = end + 1) {
      const std::string line(start, end);
      lines.push_back(line.substr(std::strlen("09:05:03.007: ")));
    }
    return lines;
  }

  bool IsFolder(const char* path) noexcept override {
    std::string_view folder(path);
    if (folder.ends_with('\\')) folder.remove_suffix(1);
    return folder == "C:" || folder == commonData ||
           std::find(created.begin(), created.end(), folder) != created.end();
  }
  Vask::Platform::DriveKind Drive(const char*) noexcept override {
    return Vask::Platform::DriveKind::Fixed;
  }
  bool CreateFolder(const char* path) noexcept override {
    if (refused.contains(path)) return false;
    created.emplace_back(path);
    return true;
  }
  bool List(const char*, Vask::Platform::FileVisitor, void*) noexcept override { return true; }
  bool Delete(const char*) noexcept override { return false; }
  Vask::Platform::FileHandle OpenForAppend(const char*) noexcept override {
    return opensFiles ? 1 : Vask::Platform::kNoFile;
  }
  bool Append(Vask::Platform::FileHandle, const char* text, std::size_t length) noexcept override {
    const std::lock_guard lock(m_mutex);
    if (m_length + length >= sizeof m_text) return false;
    std::memcpy(m_text + m_length, text, length);
    m_length += length;
    return true;
  }
  std::uint64_t Length(Vask::Platform::FileHandle) noexcept override { return 0; }
  void Close(Vask::Platform::FileHandle) noexcept override {}
  Vask::Platform::FileHandle StandardOutput() noexcept override { return Vask::Platform::kNoFile; }
  bool CurrentFolder(char*, std::size_t) noexcept override { return false; }
  bool CommonApplicationData(char* path, std::size_t capacity) noexcept override {
    if (commonData.empty() || commonData.size() >= capacity) return false;
    std::memcpy(path, commonData.c_str(), commonData.size() + 1);
    return true;
  }

 private:
  std::mutex m_mutex;
  char m_text[32 * 1024] = {};
  std::size_t m_length = 0;
};

// The machine's threads, of which the n-th start (from 0) may be refused.
class CountedThreading final : public Vask::Tests::ForwardingThreading {
 public:
  std::set<int> refusedStarts;
  std::function<void()> beforeStart;
  std::atomic<int> starts{0};
  std::atomic<int> joins{0};

  Vask::Platform::NativeHandle StartThread(
      const Vask::Platform::ThreadEntry& entry) noexcept override {
    if (beforeStart) beforeStart();
    if (refusedStarts.contains(starts++)) return nullptr;
    return ForwardingThreading::StartThread(entry);
  }
  void JoinThread(Vask::Platform::NativeHandle thread,
                  Vask::Platform::NativeHandle finished) noexcept override {
    ++joins;
    ForwardingThreading::JoinThread(thread, finished);
  }
};

inline constexpr int kTimerThread = 0;
inline constexpr int kLinkThread = 1;

// The whole agent with a disk of its own and without a network: every attempt
// to connect fails.
class LifecycleTest : public ::testing::Test {
 protected:
  ~LifecycleTest() override {
    link.StopThread();
    timers.StopService();
    Messages::Registrar::Instance().SetSender(nullptr);
    Messages::Registrar::Instance().SetErrorSink(nullptr);
  }

  // Lines of the log, without those that the link's thread adds when it likes.
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

  StartFiles files;
  CountedThreading threading;
  NoNetwork sockets;
  Vask::Tests::FakeClock clock;
  Vask::DailyLog log{clock, files, sockets};
  Vask::ErrReporter errors;
  Vask::TimerService timers{clock, threading};
  SNMPExtensionAgent agent{clock, threading};
  MyConnectNotify connectNotify{agent, timers, Messages::Registrar::Instance()};
  Vask::JsonSocket link{&connectNotify, Vask::Platform::SystemClock(), sockets, threading};
  Lifecycle lifecycle{{agent, connectNotify, link, timers, log, errors,
                       Messages::Registrar::Instance(), files, sockets,
                       [](const Messages::SNMPmessage&, std::int32_t, void*) {},
                       [](const Messages::SNMPupdateFinished&, std::int32_t, void*) {}}};
  EntryPoints entries{agent, lifecycle};
};

}  // namespace Agent::Tests
