#include "Src/Win32Task.h"

#include <gtest/gtest.h>

#include "tests/support/ScriptedThreading.h"

namespace Vask::Tests {
namespace {

void DoNothing(void*) noexcept {}

TEST(Win32TaskTest, ClosesAValidHandleOnceAndInvalidOnesNever) {
  ScriptedThreading valid;
  const Platform::NativeHandle kInvalidHandleValue =
      reinterpret_cast<Platform::NativeHandle>(std::intptr_t{-1});
  const struct {
    const char* name;
    Platform::NativeHandle handle;
    bool isValid;
  } rows[] = {
      {"null", nullptr, false},
      {"the invalid-handle value", kInvalidHandleValue, false},
      {"a thread", &valid, true},
  };
  for (const auto& row : rows) {
    ScriptedThreading threading;
    threading.nextThread = row.handle;
    {
      const Win32Task task(threading, {&DoNothing, nullptr, nullptr});
      EXPECT_EQ(task.Valid(), row.isValid) << row.name;
      EXPECT_TRUE(threading.closedThreads.empty()) << row.name;
    }
    EXPECT_EQ(threading.closedThreads.size(), row.isValid ? 1u : 0u) << row.name;
  }
}

}  // namespace
}  // namespace Vask::Tests
