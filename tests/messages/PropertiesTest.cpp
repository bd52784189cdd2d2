#include "messages/Properties.h"

#include <cstring>
#include <limits>

#include "json/JsonScalars.h"
#include "tests/messages/MessageTest.h"

namespace Messages::Tests {
namespace {

class PropertiesTest : public MessageTest {
 protected:
  static constexpr unsigned kCapacity = 4;

  // Each returns "true" or "false" and what the destination then holds.
  std::string ReadText(const char* object, bool optional = false) {
    char destination[kCapacity + 1] = "####";
    const bool read =
        GetStrProperty(*ParseObject(object), "Name", destination, kCapacity, optional);
    return (read ? "true " : "false ") + std::string(destination);
  }
  std::string ReadInt(const char* object, bool optional = false) {
    std::int32_t destination = 99;
    const bool read = GetIntProperty(*ParseObject(object), "Count", destination, optional);
    return (read ? "true " : "false ") + std::to_string(destination);
  }
  std::string ReadFloat(const char* object) {
    double destination = 99;
    const bool read = GetFloatProperty(*ParseObject(object), "gain", destination);
    return (read ? "true " : "false ") + std::to_string(destination);
  }
  std::string ReadObject(const char* object, bool optional) {
    const auto outer = ParseObject(object);
    const Vask::JsonObject* nested = GetObjProperty(*outer, "data", optional);
    return nested == nullptr ? "none" : Compact(*nested);
  }
};

TEST_F(PropertiesTest, TextOfItsCapacityIsCopied) {
  EXPECT_EQ("true abcd", ReadText(R"({"Name":"abcd"})"));
  EXPECT_EQ("true ", ReadText(R"({"Name":""})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, TextIsFoundInAnyLetterCase) {
  EXPECT_EQ("true ab", ReadText(R"({"nAmE":"ab"})"));
}

TEST_F(PropertiesTest, TextOverItsCapacityIsRefusedAndNotCut) {
  EXPECT_EQ("false ", ReadText(R"({"Name":"abcde"})"));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'Name' exceeds the max length of 4. It is 5 bytes."},
            Reports());
}

TEST_F(PropertiesTest, TextLengthCountsBytes) {
  EXPECT_EQ("true \xC3\xA9\xC3\xA9", ReadText(R"({"Name":"\u00e9\u00e9"})"));
  EXPECT_EQ("false ", ReadText(R"({"Name":"\u00e9\u00e9x"})"));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'Name' exceeds the max length of 4. It is 5 bytes."},
            Reports());
}

TEST_F(PropertiesTest, OptionalDoesNotSilenceATextThatIsTooLong) {
  EXPECT_EQ("false ", ReadText(R"({"Name":"abcde"})", true));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'Name' exceeds the max length of 4. It is 5 bytes."},
            Reports());
}

TEST_F(PropertiesTest, AbsentTextIsReportedUnlessOptional) {
  EXPECT_EQ("false ", ReadText(R"({"Other":"ab"})"));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'Name' not found"}, Reports());
  EXPECT_EQ("false ", ReadText(R"({"Other":"ab"})", true));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, PrefixOfAnotherKeyIsAbsent) {
  EXPECT_EQ("false ", ReadText(R"({"Names":"ab"})"));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'Name' not found"}, Reports());
}

TEST_F(PropertiesTest, OtherKindsThanTextAreReportedEvenIfOptional) {
  for (const char* value : {"5", "true", "null", "{}", "[]"}) {
    const std::string object = std::string(R"({"Name":)") + value + "}";
    for (const bool optional : {false, true}) {
      EXPECT_EQ("false ", ReadText(object.c_str(), optional)) << object;
      EXPECT_EQ(
          Texts{"GetStrProperty: Property 'Name' was expected to be a string (but it is not)"},
          Reports())
          << object;
    }
  }
}

TEST_F(PropertiesTest, IntegralNumbersAreRead) {
  EXPECT_EQ("true 0", ReadInt(R"({"Count":0})"));
  EXPECT_EQ("true -7", ReadInt(R"({"count":-7})"));
  EXPECT_EQ("true 2147483647", ReadInt(R"({"Count":2147483647})"));
  EXPECT_EQ("true 1", ReadInt(R"({"Count":1e3})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, LargerNumbersKeepTheirLow32Bits) {
  EXPECT_EQ("true -2147483648", ReadInt(R"({"Count":2147483648})"));
  EXPECT_EQ("true 1", ReadInt(R"({"Count":4294967297})"));
  EXPECT_EQ("true -1", ReadInt(R"({"Count":99999999999999999999})"));
}

TEST_F(PropertiesTest, AbsentIntegerIsReportedUnlessOptional) {
  EXPECT_EQ("false 0", ReadInt("{}"));
  EXPECT_EQ(Texts{"GetIntProperty: Property 'Count' not found"}, Reports());
  EXPECT_EQ("false 0", ReadInt("{}", true));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, OtherKindsThanIntegersAreReportedEvenIfOptional) {
  for (const char* value : {"2.5", "2.0", "1.", "\"7\"", "true", "null", "{}", "[]"}) {
    const std::string object = std::string(R"({"Count":)") + value + "}";
    for (const bool optional : {false, true}) {
      EXPECT_EQ("false 0", ReadInt(object.c_str(), optional)) << object;
      EXPECT_EQ(Texts{"GetIntProperty: Property 'Count' was expected to be an int (but it is not)"},
                Reports())
          << object;
    }
  }
}

TEST_F(PropertiesTest, AnyNumberIsReadAsReal) {
  EXPECT_EQ("true 2.500000", ReadFloat(R"({"gain":2.5})"));
  EXPECT_EQ("true -3.000000", ReadFloat(R"({"gain":-3})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, AbsentRealIsReported) {
  EXPECT_EQ("false 0.000000", ReadFloat("{}"));
  EXPECT_EQ(Texts{"GetFloatProperty: Property 'gain' not found"}, Reports());
}

TEST_F(PropertiesTest, OtherKindsThanNumbersAreNoReal) {
  for (const char* value : {"\"2.5\"", "true", "null", "{}", "[]"}) {
    const std::string object = std::string(R"({"gain":)") + value + "}";
    EXPECT_EQ("false 0.000000", ReadFloat(object.c_str())) << object;
    EXPECT_EQ(
        Texts{"GetFloatProperty: Property 'gain' was expected to be a double (but it is not)"},
        Reports())
        << object;
  }
}

TEST_F(PropertiesTest, NestedObjectStaysWithTheOuterOne) {
  EXPECT_EQ(R"({"a":1})", ReadObject(R"({"Data":{"a":1}})", false));
  EXPECT_EQ("{}", ReadObject(R"({"data":{}})", true));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, AbsentObjectIsReportedUnlessOptional) {
  EXPECT_EQ("none", ReadObject("{}", false));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'data' not found"}, Reports());
  EXPECT_EQ("none", ReadObject("{}", true));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(PropertiesTest, OtherKindsThanObjectsReturnNullWithoutAReport) {
  for (const char* object :
       {R"({"data":5})", R"({"data":"x"})", R"({"data":[]})", R"({"data":null})"}) {
    EXPECT_EQ("none", ReadObject(object, false)) << object;
    EXPECT_EQ("none", ReadObject(object, true)) << object;
    EXPECT_EQ(Texts{}, Reports()) << object;
  }
}

TEST_F(PropertiesTest, SettersStoreCopiesThatOnlyTheObjectHolds) {
  const auto object = ParseObject("{}");
  char text[] = "SNMPd";
  SetStrProperty(*object, "From", text);
  text[0] = '#';
  SetIntProperty(*object, "Id", -12);
  EXPECT_EQ(R"({"from":"SNMPd","id":-12})", Compact(*object));
}

TEST_F(PropertiesTest, SetNumberReadsTheSameInEveryForm) {
  for (const std::int32_t value : {0, 7, -7, std::numeric_limits<std::int32_t>::max(),
                                   std::numeric_limits<std::int32_t>::min()}) {
    const auto object = ParseObject("{}");
    SetIntProperty(*object, "n", value);
    const auto& number = static_cast<const Vask::JsonNumber&>(*object->Find("n"));
    EXPECT_EQ(std::to_string(value), Compact(number));
    EXPECT_TRUE(number.IsInteger());
    EXPECT_EQ(value, number.IntValue());
    EXPECT_EQ(static_cast<double>(value), number.DoubleValue());
  }
}

TEST_F(PropertiesTest, SetReplacesWhatWasThere) {
  const auto object = ParseObject(R"({"id":{"deep":[1,2]}})");
  SetIntProperty(*object, "ID", 3);
  EXPECT_EQ(R"({"id":3})", Compact(*object));
}

}  // namespace
}  // namespace Messages::Tests
