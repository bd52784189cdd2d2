#pragma once

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/Files.h"
#include "platform/Sockets.h"
#include "tests/support/ForwardingThreading.h"

// The seams of a machine that has little more than a disk for the log.

namespace Agent::Tests {

// A disk for one log. It creates or refuses folders, and keeps what is written
// in a buffer of its own, so that it works without memory, too. Any thread may
// write; the buffer takes 32 KiB and refuses more.
class LogDisk final : public Vask::Platform::Files {
 public:
  std::string commonData = "C:\\Data";  // empty: the folder does not exist
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

// Sockets of a machine without a network. The first socket opens but cannot
// connect; later ones do not open. Any thread.
class NoNetwork final : public Vask::Platform::Sockets {
 public:
  using Handle = Vask::Platform::SocketHandle;
  using Address = Vask::Platform::SocketAddress;

  static constexpr Handle kFirst = 7;

  std::atomic<int> opened{0};
  std::atomic<int> openedByOwner{0};  // on the thread that built this object
  std::atomic<int> closed{0};
  std::atomic<int> disconnected{0};

  bool StartUp() noexcept override { return true; }
  Handle OpenTcp() noexcept override {
    if (std::this_thread::get_id() == m_owner) ++openedByOwner;
    const int n = opened++;
    return n == 0 ? kFirst : Vask::Platform::kInvalidSocket;
  }
  Handle OpenUdp() noexcept override { return Vask::Platform::kInvalidSocket; }
  bool Connect(Handle, const Address&) noexcept override { return false; }
  void SetBlocking(Handle) noexcept override {}
  int Send(Handle, const char*, std::size_t) noexcept override { return -1; }
  bool LastErrorWouldBlock() noexcept override { return false; }
  int Receive(Handle, char*, std::size_t) noexcept override { return -1; }
  Vask::Platform::Readiness WaitReadable(Handle, std::uint32_t) noexcept override {
    return Vask::Platform::Readiness::Failed;
  }
  Vask::Platform::Disconnection Disconnect(Handle) noexcept override {
    ++disconnected;
    return Vask::Platform::Disconnection::Done;
  }
  void Shutdown(Handle) noexcept override {}
  void Close(Handle) noexcept override { ++closed; }
  bool IgnorePortUnreachable(Handle) noexcept override { return false; }
  void AllowAddressReuse(Handle) noexcept override {}
  bool Bind(Handle, std::uint16_t) noexcept override { return false; }
  int SendTo(Handle, const char*, std::size_t, const Address&) noexcept override { return -1; }
  bool LookUp(const char*, std::uint32_t&) noexcept override { return false; }
  bool HostName(char*, std::size_t) noexcept override { return false; }

 private:
  const std::thread::id m_owner = std::this_thread::get_id();
};

// Another machine's events, and no threads.
class NoThreads final : public Vask::Tests::ForwardingThreading {
 public:
  using ForwardingThreading::ForwardingThreading;

  Vask::Platform::NativeHandle StartThread(const Vask::Platform::ThreadEntry&) noexcept override {
    return nullptr;
  }
};

}  // namespace Agent::Tests
