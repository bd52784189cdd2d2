#include "messages/SNMPmessage.h"

#include "tests/messages/MessageTest.h"

namespace Messages::Tests {
namespace {

class SNMPmessageTest : public MessageTest {
 protected:
  // Returns the result of the decode and what the union then holds.
  std::string Decoded(const std::string& body) {
    SNMPmessage message;
    const bool decoded = DecodeStruct_SNMPmessage(*ParseObject(body), message);
    return (decoded ? "true " : "false ") + Dump(message.m_messageType);
  }

  static std::string Dump(const SNMPmessage::messageType& choice) {
    const std::string tag = std::to_string(choice.m_tag);
    switch (choice.m_tag) {
      case SNMPmessage::kProduct:
        return tag + " " + choice.m_Product.m_Name + "|" + choice.m_Product.m_Version;
      case SNMPmessage::kStreams:
        return tag + Numbers({choice.m_Streams.m_Count, choice.m_Streams.m_Errors});
      case SNMPmessage::kStreamMonitors:
        return tag + Numbers({choice.m_StreamMonitors.m_Count, choice.m_StreamMonitors.m_Errors,
                              choice.m_StreamMonitors.m_Silence});
      case SNMPmessage::kAudioSources:
        return tag + Numbers({choice.m_AudioSources.m_Count, choice.m_AudioSources.m_Errors,
                              choice.m_AudioSources.m_Silence});
      default:
        return tag;
    }
  }
  static std::string Numbers(std::initializer_list<std::int32_t> numbers) {
    std::string text;
    for (const std::int32_t number : numbers) text += " " + std::to_string(number);
    return text;
  }
};

TEST_F(SNMPmessageTest, StartsEmpty) {
  SNMPmessage message;
  EXPECT_EQ(4u, message.m_messageType.m_tag);
}

TEST_F(SNMPmessageTest, EveryAlternativeHasItsTagAndFields) {
  struct Row {
    const char* body;
    const char* decoded;
  };
  const Row rows[] = {
      {R"({"messageType": {"Product": {"Name": "Main", "Version": "2.1"}}})", "true 0 Main|2.1"},
      {R"({"messageType": {"Streams": {"Count": 12, "Errors": 1}}})", "true 1 12 1"},
      {R"({"messageType": {"StreamMonitors": {"Count": 3, "Errors": 2, "Silence": 1}}})",
       "true 2 3 2 1"},
      {R"({"messageType": {"AudioSources": {"Count": 9, "Errors": 8, "Silence": 7}}})",
       "true 3 9 8 7"},
      {R"({"MESSAGETYPE": {"audiosources": {"COUNT": 9, "errors": 8, "sIlEnCe": 7}}})",
       "true 3 9 8 7"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.decoded, Decoded(row.body)) << row.body;
    EXPECT_EQ(Texts{}, Reports()) << row.body;
  }
}

TEST_F(SNMPmessageTest, CountsAtTheirBoundsDecodeAndOneBeyondIsRefused) {
  EXPECT_EQ("true 1 1024 0",
            Decoded(R"({"messageType": {"Streams": {"Count": 1024, "Errors": 0}}})"));
  EXPECT_EQ(Texts{}, Reports());
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"Streams": {"Count": 1025, "Errors": 0}}})"));
  EXPECT_EQ(Texts{"DecodeStruct_Streams: m_Count expected to be less than 1024. It is 1025."},
            Reports());
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"Streams": {"Count": -1, "Errors": 0}}})"));
  EXPECT_EQ(Texts{"DecodeStruct_Streams: m_Count expected to be greater than 0. It is -1."},
            Reports());
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"AudioSources":
                                   {"Count": 1, "Errors": 1, "Silence": 1025}}})"));
  EXPECT_EQ(
      Texts{"DecodeStruct_AudioSources: m_Silence expected to be less than 1024. It is 1025."},
      Reports());
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"StreamMonitors":
                                   {"Count": 1, "Errors": -9, "Silence": 1}}})"));
  EXPECT_EQ(Texts{"DecodeStruct_StreamMonitors: m_Errors expected to be greater than 0. It is -9."},
            Reports());
}

TEST_F(SNMPmessageTest, RangeIsCheckedBeforeTheNextFieldIsRead) {
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"Streams": {"Count": 2000}}})"));
  EXPECT_EQ(Texts{"DecodeStruct_Streams: m_Count expected to be less than 1024. It is 2000."},
            Reports());
}

TEST_F(SNMPmessageTest, MissingFieldIsReportedAndLeavesTheTagEmpty) {
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"Streams": {"Count": 3}}})"));
  EXPECT_EQ(Texts{"GetIntProperty: Property 'Errors' not found"}, Reports());
}

TEST_F(SNMPmessageTest, NumbersWithADecimalPointAndTextsAreNoCounts) {
  for (const char* count : {"2.5", "2.0", "\"2\""}) {
    EXPECT_EQ("false 4", Decoded(R"({"messageType": {"Streams": {"Count": )" + std::string(count) +
                                 R"(, "Errors": 0}}})"))
        << count;
    EXPECT_EQ(Texts{"GetIntProperty: Property 'Count' was expected to be an int (but it is not)"},
              Reports())
        << count;
  }
}

TEST_F(SNMPmessageTest, LowerTagOfTwoAlternativesIsTaken) {
  EXPECT_EQ("true 0 x|y", Decoded(R"({"messageType": {"Streams": {"Count": 1, "Errors": 0},
                                      "Product": {"Name": "x", "Version": "y"}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(SNMPmessageTest, AlternativeThatFailsIsNotReplacedByAnother) {
  EXPECT_EQ("false 4", Decoded(R"({"messageType": {"Product": {"Name": "x"},
                                   "Streams": {"Count": 1, "Errors": 0}}})"));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'Version' not found"}, Reports());
}

TEST_F(SNMPmessageTest, AlternativeThatIsNoObjectIsPassedOver) {
  EXPECT_EQ("true 3 1 0 0", Decoded(R"({"messageType": {"Streams": 5,
                                        "AudioSources": {"Count": 1, "Errors": 0, "Silence": 0}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(SNMPmessageTest, UnionWithoutAlternativeFailsSilently) {
  for (const char* body :
       {R"({"messageType": {}})", R"({"messageType": {"Other": {}}})", R"({"messageType": []})",
        R"({"messageType": "Streams"})", R"({"messageType": {"Streams": null}})"}) {
    EXPECT_EQ("false 4", Decoded(body)) << body;
    EXPECT_EQ(Texts{}, Reports()) << body;
  }
}

TEST_F(SNMPmessageTest, EmptyBodyIsReported) {
  EXPECT_EQ("false 4", Decoded("{}"));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'messageType' not found"}, Reports());
}

TEST_F(SNMPmessageTest, ProductTextsKeepToTheirCapacities) {
  const std::string name(128, 'n');
  const std::string version(64, 'v');
  const auto product = [](const std::string& n, const std::string& v) {
    return R"({"messageType": {"Product": {"Name": ")" + n + R"(", "Version": ")" + v + R"("}}})";
  };
  EXPECT_EQ("true 0 " + name + "|" + version, Decoded(product(name, version)));
  EXPECT_EQ(Texts{}, Reports());
  EXPECT_EQ("false 4", Decoded(product(name + "n", version)));
  EXPECT_EQ(
      Texts{"GetStrProperty: Property 'Name' exceeds the max length of 128. It is 129 bytes."},
      Reports());
  EXPECT_EQ("false 4", Decoded(product(name, version + "v")));
  EXPECT_EQ(
      Texts{"GetStrProperty: Property 'Version' exceeds the max length of 64. It is 65 bytes."},
      Reports());
}

TEST_F(SNMPmessageTest, DestructorUnderstandsEveryTagUpToTheEmptyOne) {
  for (std::uint32_t tag = 0; tag <= 4; ++tag) {
    SNMPmessage message;
    message.m_messageType.m_tag = tag;
  }
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(SNMPmessageTest, DestructorReportsAnyOtherTag) {
  {
    SNMPmessage message;
    message.m_messageType.m_tag = 5;
  }
  EXPECT_EQ(Texts{"DestroyUnion_messageType: Union tag not understood for "
                  "'SNMPmessage::messageType' (tag=5)"},
            Reports());
}

TEST_F(SNMPmessageTest, DestroyedUnionIsEmpty) {
  SNMPmessage message;
  message.m_messageType.m_tag = 1000;
  DestroyUnion_messageType(message.m_messageType);
  EXPECT_EQ(SNMPmessage::kEmpty, message.m_messageType.m_tag);
  EXPECT_EQ(1u, Reports().size());
  message.m_messageType.m_Streams = {3, 1};
  message.m_messageType.m_tag = SNMPmessage::kStreams;
  DestroyUnion_messageType(message.m_messageType);
  EXPECT_EQ(SNMPmessage::kEmpty, message.m_messageType.m_tag);
  EXPECT_EQ(Texts{}, Reports());
}

}  // namespace
}  // namespace Messages::Tests
