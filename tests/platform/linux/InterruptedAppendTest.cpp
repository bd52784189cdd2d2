// A signal that arrives while Files waits for room interrupts the call of the system. The
// text is written all the same.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include "platform/Files.h"

namespace Vask::Tests {
namespace {

using namespace std::chrono_literals;

std::atomic<int> g_signals{0};

class InterruptedAppendTest : public testing::Test {
 protected:
  static constexpr std::size_t kRoom = 4096;

  InterruptedAppendTest() {
    struct sigaction action {};
    action.sa_handler = [](int) { ++g_signals; };  // without SA_RESTART
    sigaction(SIGUSR1, &action, &m_before);
    g_signals = 0;
  }
  ~InterruptedAppendTest() override { sigaction(SIGUSR1, &m_before, nullptr); }

  // True when the thread waits in write(2). Gives up after a minute.
  static bool WaitsInWrite(pid_t thread) {
    const std::string file = "/proc/self/task/" + std::to_string(thread) + "/syscall";
    const auto deadline = std::chrono::steady_clock::now() + 1min;
    while (std::chrono::steady_clock::now() < deadline) {
      long number = -1;
      if (std::ifstream(file) >> number && number == SYS_write) return true;
      std::this_thread::sleep_for(1ms);
    }
    return false;
  }

  static std::string ReadToEnd(int file) {
    std::string text;
    std::array<char, kRoom> piece{};
    for (ssize_t length; (length = read(file, piece.data(), piece.size())) > 0;) {
      text.append(piece.data(), static_cast<std::size_t>(length));
    }
    return text;
  }

 private:
  struct sigaction m_before {};
};

TEST_F(InterruptedAppendTest, TextIsWrittenWhenThereIsRoomAgain) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
  ASSERT_EQ(fcntl(pipe[1], F_SETPIPE_SZ, static_cast<int>(kRoom)), static_cast<int>(kRoom));
  const std::string full(kRoom, 'x');
  ASSERT_EQ(write(pipe[1], full.data(), kRoom), static_cast<ssize_t>(kRoom));

  std::atomic<pid_t> id{0};
  bool appended = false;
  std::thread writer([&] {
    id = gettid();
    const std::string text = "interrupted";
    appended = Platform::SystemFiles().Append(pipe[1], text.data(), text.size());
  });
  while (id == 0) std::this_thread::yield();
  EXPECT_TRUE(WaitsInWrite(id));
  EXPECT_EQ(pthread_kill(writer.native_handle(), SIGUSR1), 0);
  while (g_signals == 0) std::this_thread::yield();

  std::array<char, kRoom> first{};
  EXPECT_EQ(read(pipe[0], first.data(), kRoom), static_cast<ssize_t>(kRoom));
  writer.join();
  EXPECT_TRUE(appended);
  close(pipe[1]);
  EXPECT_EQ(ReadToEnd(pipe[0]), "interrupted");
  close(pipe[0]);
}

}  // namespace
}  // namespace Vask::Tests
