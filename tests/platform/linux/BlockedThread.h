#pragma once

#include <sys/types.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

namespace Vask::Tests {

// Waits until the thread of this process is blocked in the system call with this number.
// Gives up after a minute and returns false.
inline bool AwaitBlockedIn(long call, pid_t thread) {
  using namespace std::chrono_literals;
  const std::string file = "/proc/self/task/" + std::to_string(thread) + "/syscall";
  const auto deadline = std::chrono::steady_clock::now() + 1min;
  while (std::chrono::steady_clock::now() < deadline) {
    long number = -1;
    if (std::ifstream(file) >> number && number == call) return true;
    std::this_thread::sleep_for(1ms);
  }
  return false;
}

}  // namespace Vask::Tests
