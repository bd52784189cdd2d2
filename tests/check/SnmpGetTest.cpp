#include "check/SnmpGet.h"

#include <gtest/gtest.h>

#include <string>

namespace Check {
namespace {

std::string Bytes(std::initializer_list<int> bytes) {
  std::string text;
  for (const int byte : bytes) text.push_back(static_cast<char>(byte));
  return text;
}

// A response to request 1, community "c", for 1.3.6.1.4.1.32473.0 with the given value.
std::string Response(const std::string& value) {
  const std::string oid = Bytes({0x06, 0x09, 0x2B, 0x06, 0x01, 0x04, 0x01, 0x81, 0xFD, 0x59, 0x00});
  const auto wrap = [](int tag, const std::string& content) {
    return Bytes({tag, static_cast<int>(content.size())}) + content;
  };
  const std::string pdu =
      Bytes({0x02, 1, 1, 0x02, 1, 0, 0x02, 1, 0}) + wrap(0x30, wrap(0x30, oid + value));
  return wrap(0x30, Bytes({0x02, 1, 1, 0x04, 1, 'c'}) + wrap(0xA2, pdu));
}

TEST(SnmpGet, RequestHasTheBytesOfTheStandard) {
  // The bytes that snmpget sends, except for the number of the request.
  EXPECT_EQ(EncodeGet("c", 1, {{1, 3, 6, 1, 4, 1, 32473, 0}}),
            Bytes({0x30, 0x22, 0x02, 0x01, 0x01, 0x04, 0x01, 'c',  0xA0, 0x1A, 0x02, 0x01,
                   0x01, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x30, 0x0F, 0x30, 0x0D, 0x06,
                   0x09, 0x2B, 0x06, 0x01, 0x04, 0x01, 0x81, 0xFD, 0x59, 0x00, 0x05, 0x00}));
}

TEST(SnmpGet, LongLengthsHaveTwoBytes) {
  const std::string request = EncodeGet(std::string(255, 'c'), 0x7FFFFFFF, {{1, 3}});
  EXPECT_EQ(request.substr(0, 4), Bytes({0x30, 0x82, 0x01, 0x1C}));
  EXPECT_EQ(request.substr(7, 3), Bytes({0x04, 0x81, 0xFF}));
  EXPECT_EQ(request.size(), 4u + 0x11C);
}

TEST(SnmpGet, NumberIsRead) {
  const auto response = DecodeResponse(Response(Bytes({0x02, 2, 0x04, 0x00})));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->requestId, 1);
  EXPECT_EQ(response->errorStatus, 0);
  ASSERT_EQ(response->bindings.size(), 1u);
  EXPECT_EQ(DottedText(response->bindings[0].oid), "1.3.6.1.4.1.32473.0");
  EXPECT_EQ(response->bindings[0].kind, SnmpBinding::Kind::kNumber);
  EXPECT_EQ(response->bindings[0].number, 1024);
}

TEST(SnmpGet, SignIsKept) {
  const auto number = [](const std::string& value) {
    const auto response = DecodeResponse(Response(value));
    return response ? response->bindings[0].number : 4711;
  };
  EXPECT_EQ(number(Bytes({0x02, 1, 0xFF})), -1);
  EXPECT_EQ(number(Bytes({0x02, 4, 0x80, 0, 0, 0})), -2147483648LL);
  EXPECT_EQ(number(Bytes({0x42, 4, 0xFF, 0xFF, 0xFF, 0xFF})), 4294967295LL);
  EXPECT_EQ(number(Bytes({0x43, 5, 0, 0xFF, 0xFF, 0xFF, 0xFF})), 4294967295LL);
}

TEST(SnmpGet, TextMayBeEmptyAndHoldZeros) {
  const auto response = DecodeResponse(Response(Bytes({0x04, 3, 'a', 0, 'b'})));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->bindings[0].kind, SnmpBinding::Kind::kText);
  EXPECT_EQ(response->bindings[0].text, std::string("a\0b", 3));
  EXPECT_EQ(DecodeResponse(Response(Bytes({0x04, 0})))->bindings[0].text, "");
}

TEST(SnmpGet, MissingVariablesAreRecognised) {
  for (const int tag : {0x80, 0x81, 0x82}) {
    const auto response = DecodeResponse(Response(Bytes({tag, 0})));
    ASSERT_TRUE(response) << tag;
    EXPECT_EQ(response->bindings[0].kind, SnmpBinding::Kind::kMissing) << tag;
  }
}

TEST(SnmpGet, EveryCutResponseIsRefused) {
  const std::string whole = Response(Bytes({0x02, 1, 5}));
  ASSERT_TRUE(DecodeResponse(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(DecodeResponse(whole.substr(0, length))) << length;
  }
}

TEST(SnmpGet, MalformedResponsesAreRefused) {
  EXPECT_FALSE(DecodeResponse(Response(Bytes({0x02, 0}))));                    // no digits
  EXPECT_FALSE(DecodeResponse(Response(Bytes({0x02, 6, 0, 0, 0, 0, 0, 1}))));  // too many
  EXPECT_FALSE(DecodeResponse(Response(Bytes({0x02, 0x80}))));                 // open length
  EXPECT_FALSE(DecodeResponse(Response(Bytes({0x02, 0x85, 0, 0, 0, 0, 1, 5}))));
  EXPECT_FALSE(DecodeResponse(Response(Bytes({0x02, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 5}))));
  EXPECT_FALSE(DecodeResponse(Response(Bytes({0x02, 1, 5, 0x05, 0}))));  // two values
  EXPECT_FALSE(DecodeResponse(Response("")));                            // none
  std::string request = Response(Bytes({0x02, 1, 5}));
  request[8] = '\xA0';
  EXPECT_FALSE(DecodeResponse(request)) << "a request is not a response";
}

TEST(SnmpGet, ValueOfAnotherTypeIsNeitherNumberNorText) {
  const auto response = DecodeResponse(Response(Bytes({0x40, 4, 127, 0, 0, 1})));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->bindings[0].kind, SnmpBinding::Kind::kOther);
}

TEST(SnmpGet, LongFormOfALengthIsRead) {
  const auto response = DecodeResponse(Response(Bytes({0x04, 0x84, 0, 0, 0, 1, 'a'})));
  ASSERT_TRUE(response);
  EXPECT_EQ(response->bindings[0].text, "a");
}

TEST(SnmpGet, IdentifierThatIsCutOrTooLargeIsRefused) {
  std::string cut = Response(Bytes({0x02, 1, 5}));
  const std::size_t last = cut.find('\x59') + 1;
  cut[last] = '\x81';  // means that more follows
  EXPECT_FALSE(DecodeResponse(cut));
  std::string large = Response(Bytes({0x02, 1, 5}));
  const std::size_t first = large.find("\x2B\x06") + 1;
  for (std::size_t i = first; i < first + 6; ++i) large[i] = '\xFF';
  EXPECT_FALSE(DecodeResponse(large));
}

}  // namespace
}  // namespace Check
