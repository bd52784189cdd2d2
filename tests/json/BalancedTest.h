#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "json/Json.h"

namespace Vask::Tests {

// A test that must leave as many values behind as it found, apart from those
// that it says are lost.
class BalancedTest : public ::testing::Test {
 protected:
  // Values that live now.
  static std::uint32_t Living() { return Json::Constructed() - Json::Destroyed(); }

  void SetUp() override { m_before = Living(); }
  void TearDown() override { EXPECT_EQ(Living() - m_before, m_lost); }

  void ExpectLost(std::uint32_t values) { m_lost = values; }

 private:
  std::uint32_t m_before = 0;
  std::uint32_t m_lost = 0;
};

}  // namespace Vask::Tests
