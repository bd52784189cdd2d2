#include "messages/SNMPtrap.h"

#include "json/Ascii.h"
#include "tests/messages/MessageTest.h"

namespace Messages::Tests {
namespace {

// By tag.
constexpr const char* kTrapNames[] = {
    "StreamsOK",
    "StreamsFailed",
    "AudioSourcesOK",
    "AudioSourcesFailed",
    "AudioSilenceDetectPassed",
    "AudioSilenceDetectFailed",
    "StreamsFailedUpdated",
    "AudioSourcesFailedUpdated",
    "AudioSilenceDetectFailedUpdated",
    "StreamMonitorsOK",
    "StreamMonitorsFailed",
    "StreamMonitorsFailedUpdated",
    "StreamMonitorsSilenceDetectPassed",
    "StreamMonitorsSilenceDetectFailed",
    "StreamMonitorsSilenceDetectFailedUpdated",
};

class SNMPtrapTest : public MessageTest {
 protected:
  std::string Decoded(const std::string& body) {
    SNMPtrap trap;
    const bool decoded = DecodeStruct_SNMPtrap(*ParseObject(body), trap);
    return (decoded ? "true " : "false ") + std::to_string(trap.m_trapType.m_tag);
  }
  static std::string Folded(std::string text) {
    for (char& c : text) c = Vask::FoldAscii(c);
    return text;
  }
};

TEST_F(SNMPtrapTest, StartsEmpty) {
  const SNMPtrap trap;
  EXPECT_EQ(15u, trap.m_trapType.m_tag);
}

TEST_F(SNMPtrapTest, EveryNameHasTheSameTagBothWays) {
  for (std::uint32_t tag = 0; tag < 15; ++tag) {
    const std::string name = kTrapNames[tag];
    EXPECT_EQ("true " + std::to_string(tag), Decoded(R"({"trapType": {")" + name + R"(": {}}})"))
        << name;
    SNMPtrap trap;
    trap.m_trapType.m_tag = tag;
    const Vask::JsonRef<Vask::JsonObject> body(EncodeStruct_SNMPtrap(trap));
    ASSERT_TRUE(body) << name;
    EXPECT_EQ(R"({"traptype":{")" + Folded(name) + R"(":{}}})", Compact(*body));
  }
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(SNMPtrapTest, UnionAloneIsEncodedAsAnObjectOfOneEmptyObject) {
  SNMPtrap trap;
  trap.m_trapType.m_tag = SNMPtrap::kStreamMonitorsSilenceDetectPassed;
  const Vask::JsonRef<Vask::JsonObject> choice(EncodeUnion_trapType(trap.m_trapType));
  ASSERT_TRUE(choice);
  EXPECT_EQ(R"({"streammonitorssilencedetectpassed":{}})", Compact(*choice));
  EXPECT_NE(nullptr, choice->Find("StreamMonitorsSilenceDetectPassed"));
}

TEST_F(SNMPtrapTest, UnionWithoutAKnownNameFailsSilently) {
  for (const char* body : {R"({"trapType": {}})", R"({"trapType": {"Streams": {}, "LinkUp": {}}})",
                           R"({"trapType": {"StreamsOK": 1}})", R"({"trapType": "StreamsOK"})"}) {
    EXPECT_EQ("false 15", Decoded(body)) << body;
    EXPECT_EQ(Texts{}, Reports()) << body;
  }
}

TEST_F(SNMPtrapTest, MissingUnionIsReported) {
  EXPECT_EQ("false 15", Decoded("{}"));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'trapType' not found"}, Reports());
}

TEST_F(SNMPtrapTest, FirstNameInTagOrderIsTaken) {
  EXPECT_EQ("true 3", Decoded(R"({"trapType": {"StreamMonitorsOK": {}, "AudioSourcesOK": 1,
                                  "AudioSourcesFailed": {}}})"));
}

TEST_F(SNMPtrapTest, MembersOfTheAlternativeAreNotRead) {
  EXPECT_EQ("true 9", Decoded(R"({"trapType": {"StreamMonitorsOK": {"more": [1, 2]}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(SNMPtrapTest, TrapWithoutTypeIsReportedAndNotEncoded) {
  SNMPtrap trap;
  EXPECT_EQ(nullptr, EncodeStruct_SNMPtrap(trap));
  EXPECT_EQ(Texts{"EncodeUnion_trapType: Union tag not understood for 'SNMPtrap::trapType' "
                  "(tag=15)"},
            Reports());
  trap.m_trapType.m_tag = 16;
  EXPECT_EQ(nullptr, EncodeUnion_trapType(trap.m_trapType));
  EXPECT_EQ(Texts{"EncodeUnion_trapType: Union tag not understood for 'SNMPtrap::trapType' "
                  "(tag=16)"},
            Reports());
  trap.m_trapType.m_tag = SNMPtrap::kEmpty;
}

TEST_F(SNMPtrapTest, DestroyUnderstandsEveryTagUpToTheEmptyOne) {
  for (std::uint32_t tag = 0; tag <= 15; ++tag) {
    SNMPtrap trap;
    trap.m_trapType.m_tag = tag;
    DestroyUnion_trapType(trap.m_trapType);
    EXPECT_EQ(15u, trap.m_trapType.m_tag);
  }
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(SNMPtrapTest, DestructorReportsAnyOtherTag) {
  {
    SNMPtrap trap;
    trap.m_trapType.m_tag = 16;
  }
  EXPECT_EQ(Texts{"DestroyUnion_trapType: Union tag not understood for 'SNMPtrap::trapType' "
                  "(tag=16)"},
            Reports());
}

TEST_F(SNMPtrapTest, DestroyedUnionIsEmptyAfterAReportToo) {
  SNMPtrap trap;
  trap.m_trapType.m_tag = 0x80000000;
  DestroyUnion_trapType(trap.m_trapType);
  EXPECT_EQ(15u, trap.m_trapType.m_tag);
  EXPECT_EQ(Texts{"DestroyUnion_trapType: Union tag not understood for 'SNMPtrap::trapType' "
                  "(tag=-2147483648)"},
            Reports());
}

}  // namespace
}  // namespace Messages::Tests
