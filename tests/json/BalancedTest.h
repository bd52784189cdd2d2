#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "json/Json.h"

namespace Vask::Tests {

// A test that must leave as many values behind as it found.
class BalancedTest : public ::testing::Test {
 protected:
  // The number of values that live now.
  static std::uint32_t Living() { return Json::Constructed() - Json::Destroyed(); }

  void SetUp() override { m_before = Living(); }
  void TearDown() override { EXPECT_EQ(Living(), m_before); }

 private:
  std::uint32_t m_before = 0;
};

}  // namespace Vask::Tests
