#pragma once

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/platform/linux/BlockedThread.h"

namespace Vask::Tests {

// A signal that interrupts what a thread waits for. One at a time.
class Interruption {
 public:
  Interruption() {
    struct sigaction action {};
    action.sa_handler = [](int) { ++s_signals; };  // without SA_RESTART
    sigaction(SIGUSR1, &action, &m_before);
    s_signals = 0;
  }
  ~Interruption() { sigaction(SIGUSR1, &m_before, nullptr); }
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // Runs the body in a thread, and interrupts it in the system call with this number. Returns
  // the thread, which goes on behind the interruption.
  static std::thread Run(long call, const std::function<void()>& body) {
    std::atomic<pid_t> id{0};
    std::thread thread([&id, body] {
      id = gettid();
      body();
    });
    while (id == 0) std::this_thread::yield();
    EXPECT_TRUE(AwaitBlockedIn(call, id));
    EXPECT_EQ(pthread_kill(thread.native_handle(), SIGUSR1), 0);
    while (s_signals == 0) std::this_thread::yield();
    return thread;
  }

 private:
  static inline std::atomic<int> s_signals{0};
  struct sigaction m_before {};
};

}  // namespace Vask::Tests
