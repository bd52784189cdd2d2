#include "simulator/Envelope.h"

#include <gtest/gtest.h>

namespace Simulator {
namespace {

TEST(EnvelopeTest, HoldsNameAndData) {
  EXPECT_EQ(WriteEnvelope("SNMPupdateFinished", "{}"),
            R"({"data":{},"from":"Corvane","id":0,"name":"SNMPupdateFinished","op":"broadcast"})");
}

TEST(EnvelopeTest, IsReadBack) {
  const Message message = ReadEnvelope(
      R"({"data":{"traptype":{"streamsfailed":{}}},"from":"SNMPd","id":0,"name":"SNMPtrap"})");
  EXPECT_EQ(message.name, "SNMPtrap");
  EXPECT_EQ(message.data, R"({"traptype":{"streamsfailed":{}}})");
}

TEST(EnvelopeTest, WhatIsNoneStaysWhole) {
  for (const char* text : {"no JSON", "[]", "{}", R"({"name":"x"})", R"({"name":5,"data":{}})"}) {
    const Message message = ReadEnvelope(text);
    EXPECT_EQ(message.name, "") << text;
    EXPECT_EQ(message.data, text);
  }
}

}  // namespace
}  // namespace Simulator
