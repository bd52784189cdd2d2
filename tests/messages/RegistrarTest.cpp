#include "messages/Registrar.h"

#include "messages/SNMPmessage.h"
#include "net/LinkInterfaces.h"
#include "tests/messages/MessageTest.h"

namespace Messages::Tests {
namespace {

// The calls of the handlers below, as "name:id" in order.
std::string s_calls;
std::string s_currentMessage;

void OnMessage(const SNMPmessage& message, std::int32_t id, void* context) {
  s_calls += "message" + std::to_string(message.m_messageType.m_tag) + ":" + std::to_string(id) +
             (context == nullptr ? " " : "! ");
}
void OnMessageToo(const SNMPmessage&, std::int32_t id, void*) {
  s_calls += "too:" + std::to_string(id) + " ";
}
void OnFinished(const SNMPupdateFinished&, std::int32_t id, void*) {
  s_calls += "finished:" + std::to_string(id) + " ";
}
void OnPresets(const Presets&, std::int32_t, void*) {
  s_calls += "presets ";
}
void OnPresets2(const Presets2&, std::int32_t, void*) {
  s_calls += "presets2 ";
}
void OnNtp(const GetNtpConfiguration&, std::int32_t, void*) {
  s_calls += "ntp ";
}

constexpr const char* kStreams = R"({"messageType":{"Streams":{"Count":12,"Errors":1}}})";

class RegistrarTest : public MessageTest {
 protected:
  RegistrarTest() {
    s_calls.clear();
    registrar.Subscribe<SNMPmessage>(OnMessage);
    registrar.Subscribe<SNMPupdateFinished>(OnFinished);
  }
  ~RegistrarTest() override {
    registrar.Unsubscribe<SNMPmessage>(OnMessage);
    registrar.Unsubscribe<SNMPmessage>(OnMessageToo);
    registrar.Unsubscribe<SNMPupdateFinished>(OnFinished);
    registrar.Unsubscribe<Presets>(OnPresets);
    registrar.Unsubscribe<Presets2>(OnPresets2);
    registrar.Unsubscribe<GetNtpConfiguration>(OnNtp);
  }

  bool Receive(const std::string& text) { return registrar.OnJsonMessageText(text.c_str()); }
  static std::string Envelope(const std::string& name, const std::string& data,
                              const std::string& id = "7") {
    return R"({"name":")" + name + R"(","data":)" + data + R"(,"id":)" + id + "}";
  }
  // Returns the calls since the last time.
  std::string Calls() { return std::exchange(s_calls, ""); }
};

TEST_F(RegistrarTest, MessageReachesItsHandlerWithTheEnvelopesId) {
  EXPECT_TRUE(Receive(Envelope("SNMPmessage", kStreams)));
  EXPECT_EQ("message1:7 ", Calls());
  EXPECT_TRUE(Receive(Envelope("SNMPupdateFinished", "{}", "-3")));
  EXPECT_EQ("finished:-3 ", Calls());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, NameIsMatchedInAnyLetterCase) {
  for (const char* name : {"SNMPMESSAGE", "snmpmessage", "snmpMessage"}) {
    EXPECT_TRUE(Receive(Envelope(name, kStreams))) << name;
    EXPECT_EQ("message1:7 ", Calls()) << name;
  }
}

TEST_F(RegistrarTest, KeysOfTheEnvelopeAreMatchedInAnyLetterCase) {
  EXPECT_TRUE(Receive(R"({"NAME":"SNMPupdateFinished","Data":{},"ID":5})"));
  EXPECT_EQ("finished:5 ", Calls());
}

TEST_F(RegistrarTest, OtherMembersOfTheEnvelopeAreIgnored) {
  EXPECT_TRUE(Receive(R"({"from":5,"op":{},"name":"SNMPupdateFinished","data":{},"x":[null]})"));
  EXPECT_EQ("finished:0 ", Calls());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, HandlersAreCalledInOrderOfSubscription) {
  registrar.Subscribe<SNMPmessage>(OnMessageToo);
  Receive(Envelope("SNMPmessage", kStreams));
  EXPECT_EQ("message1:7 too:7 ", Calls());
  registrar.Subscribe<SNMPmessage>(OnMessage);
  Receive(Envelope("SNMPmessage", kStreams));
  EXPECT_EQ("too:7 message1:7 ", Calls());
  registrar.Unsubscribe<SNMPmessage>(OnMessageToo);
  Receive(Envelope("SNMPmessage", kStreams));
  EXPECT_EQ("message1:7 ", Calls());
}

TEST_F(RegistrarTest, DispatchCallsTheHandlersOfItsTypeOnly) {
  SNMPmessage message;
  message.m_messageType.m_Streams = {1, 2};
  message.m_messageType.m_tag = SNMPmessage::kStreams;
  registrar.Dispatch<SNMPmessage>(message, 12);
  EXPECT_EQ("message1:12 ", Calls());
}

TEST_F(RegistrarTest, TextThatIsNotJsonIsReportedWithLineAndColumn) {
  EXPECT_FALSE(Receive("{\"name\":\n  nope}"));
  EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessageText: JSON parse failed at line 2, col 3: "
                  "Unexpected token"},
            Reports());
  EXPECT_FALSE(Receive(""));
  EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessageText: JSON parse failed at line 1, col 1: "
                  "Unexpected token"},
            Reports());
  EXPECT_FALSE(Receive("[1 2]"));
  EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessageText: JSON parse failed at line 1, col 4: "},
            Reports());
}

TEST_F(RegistrarTest, RootThatIsNoObjectIsReported) {
  for (const char* text : {"[]", "[{}]", "\"SNMPmessage\"", "5", "true", "null"}) {
    EXPECT_FALSE(Receive(text)) << text;
    EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessage: The parsed JSON message has the wrong "
                    "type (expected 'object')"},
              Reports())
        << text;
  }
}

TEST_F(RegistrarTest, NullIsNoObject) {
  EXPECT_FALSE(registrar.OnJsonMessage(nullptr));
  EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessage: The parsed JSON message has the wrong "
                  "type (expected 'object')"},
            Reports());
}

TEST_F(RegistrarTest, MissingNameIsReported) {
  for (const char* text : {"{}", R"({"data":{}})", R"({"names":"SNMPmessage","data":{}})"}) {
    EXPECT_FALSE(Receive(text)) << text;
    EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessage: Received message missing the 'name' "
                    "property"},
              Reports())
        << text;
  }
}

TEST_F(RegistrarTest, NameThatIsNoStringIsReported) {
  for (const char* name : {"5", "null", "{}", "[\"SNMPmessage\"]", "true"}) {
    EXPECT_FALSE(Receive(R"({"data":{},"name":)" + std::string(name) + "}")) << name;
    EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessage: The 'name' property has the wrong type "
                    "(expected 'string')"},
              Reports())
        << name;
  }
}

TEST_F(RegistrarTest, MissingDataIsReportedTwice) {
  EXPECT_FALSE(Receive(R"({"name":"SNMPmessage"})"));
  EXPECT_EQ((Texts{"GetObjProperty: Property 'data' not found",
                   "Messages::Registrar::OnJsonMessage: The 'data' has the wrong type (expected "
                   "'object')"}),
            Reports());
}

TEST_F(RegistrarTest, DataThatIsNoObjectIsReportedOnce) {
  for (const char* data : {"[]", "5", "\"{}\"", "null"}) {
    EXPECT_FALSE(Receive(Envelope("SNMPmessage", data))) << data;
    EXPECT_EQ(Texts{"Messages::Registrar::OnJsonMessage: The 'data' has the wrong type (expected "
                    "'object')"},
              Reports())
        << data;
  }
}

TEST_F(RegistrarTest, DataIsCheckedBeforeTheNameIsMatched) {
  EXPECT_FALSE(Receive(R"({"name":"Nobody","data":1})"));
  EXPECT_EQ(1u, Reports().size());
}

TEST_F(RegistrarTest, UnknownNamesAreSkipped) {
  EXPECT_TRUE(Receive(Envelope("NewerMessage", R"({"anything":[1]})")));
  EXPECT_TRUE(Receive(Envelope("", "{}")));
  EXPECT_EQ("", Calls());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, IdsOfEveryKind) {
  struct Row {
    const char* id;
    const char* calls;
    bool reported;
  };
  const Row rows[] = {
      {"7", "finished:7 ", false},          {"-2147483648", "finished:-2147483648 ", false},
      {"4294967297", "finished:1 ", false}, {"\"7\"", "finished:0 ", true},
      {"7.5", "finished:0 ", true},         {"7.0", "finished:0 ", true},
      {"null", "finished:0 ", true},        {"{}", "finished:0 ", true},
  };
  for (const Row& row : rows) {
    EXPECT_TRUE(Receive(Envelope("SNMPupdateFinished", "{}", row.id))) << row.id;
    EXPECT_EQ(row.calls, Calls()) << row.id;
    EXPECT_EQ(row.reported ? Texts{"GetIntProperty: Property 'id' was expected to be an int (but "
                                   "it is not)"}
                           : Texts{},
              Reports())
        << row.id;
  }
}

TEST_F(RegistrarTest, MessageWhoseIdIsATextIsReportedAndDispatchedWithZero) {
  EXPECT_TRUE(Receive(Envelope("SNMPmessage", kStreams, R"("7")")));
  EXPECT_EQ("message1:0 ", Calls());
  EXPECT_EQ(Texts{"GetIntProperty: Property 'id' was expected to be an int (but it is not)"},
            Reports());
}

TEST_F(RegistrarTest, AbsentIdIsZeroWithoutAReport) {
  EXPECT_TRUE(Receive(R"({"name":"SNMPupdateFinished","data":{}})"));
  EXPECT_EQ("finished:0 ", Calls());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, FaultsOfIdAndNameAreBothReportedTheIdFirst) {
  EXPECT_FALSE(Receive(R"({"id":"x"})"));
  EXPECT_EQ((Texts{"GetIntProperty: Property 'id' was expected to be an int (but it is not)",
                   "Messages::Registrar::OnJsonMessage: Received message missing the 'name' "
                   "property"}),
            Reports());
}

TEST_F(RegistrarTest, BodyThatDoesNotDecodeReachesNoHandlerAndGetsNoFurtherReport) {
  EXPECT_FALSE(Receive(Envelope("SNMPmessage", "{}")));
  EXPECT_EQ("", Calls());
  EXPECT_EQ(Texts{"GetObjProperty: Property 'messageType' not found"}, Reports());
  EXPECT_FALSE(Receive(Envelope("SNMPmessage", R"({"messageType":{}})")));
  EXPECT_EQ("", Calls());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, WithoutSubscribersNothingIsDecoded) {
  registrar.Unsubscribe<SNMPmessage>(OnMessage);
  EXPECT_TRUE(Receive(Envelope("SNMPmessage", R"({"would":"fail"})")));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, GoodMessageIsServedAfterAnyBadOne) {
  for (const char* bad : {"", "{", "[]", "{}", R"({"name":5})",
                          R"({"name":"SNMPmessage","data":{}})", "\x01\xFF\xFE"}) {
    EXPECT_FALSE(Receive(bad)) << bad;
    EXPECT_TRUE(Receive(Envelope("SNMPupdateFinished", "{}"))) << bad;
    EXPECT_EQ("finished:7 ", Calls()) << bad;
  }
}

TEST_F(RegistrarTest, MoreSpecificNameSelectsItsOwnType) {
  registrar.Subscribe<Presets>(OnPresets);
  registrar.Subscribe<Presets2>(OnPresets2);
  for (const char* name : {"presets2", "PRESETS2"}) {
    EXPECT_TRUE(Receive(Envelope(name, "{}")));
    EXPECT_EQ("presets2 ", Calls()) << name;
  }
  EXPECT_TRUE(Receive(Envelope("PRESETS", "{}")));
  EXPECT_EQ("presets ", Calls());
}

TEST_F(RegistrarTest, FieldLessRequestTakesUnexpectedMembers) {
  registrar.Subscribe<GetNtpConfiguration>(OnNtp);
  EXPECT_TRUE(Receive(Envelope("GetNtpConfiguration", R"({"unexpected":[1,{"x":null}]})")));
  EXPECT_EQ("ntp ", Calls());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, SinkSeesTheMessageThatIsProcessed) {
  Receive("[]");
  Receive("nope");
  Receive(R"({"id":"x","name":"SNMPmessage","data":{}})");
  Receive(Envelope("SNMPmessage", "5"));
  registrar.ReportError("after %s", "all");
  const std::string third = R"({"data":{},"id":"x","name":"SNMPmessage"})";
  std::vector<std::string> messages;
  for (const Fault& fault : Faults()) messages.push_back(fault.message);
  EXPECT_EQ(
      (Texts{"null", "null", third, third, R"({"data":5,"id":7,"name":"SNMPmessage"})", "null"}),
      messages);
}

void ReportFromHandler(const SNMPupdateFinished&, std::int32_t id, void*) {
  Registrar::Instance().ReportError("handler of %d", id);
}

TEST_F(RegistrarTest, MessageIsCurrentUntilItsHandlersReturn) {
  registrar.Subscribe<SNMPupdateFinished>(ReportFromHandler);
  const auto root = ParseObject(Envelope("SNMPupdateFinished", "{}"));
  EXPECT_TRUE(registrar.OnJsonMessage(root.Get()));
  registrar.Unsubscribe<SNMPupdateFinished>(ReportFromHandler);
  registrar.ReportError("done");
  const std::vector<Fault> faults = Faults();
  ASSERT_EQ(2u, faults.size());
  EXPECT_EQ("handler of 7", faults[0].text);
  EXPECT_EQ(R"({"data":{},"id":7,"name":"SNMPupdateFinished"})", faults[0].message);
  EXPECT_EQ("done", faults[1].text);
  EXPECT_EQ("null", faults[1].message);
}

void ReceiveWithinHandler(const SNMPupdateFinished&, std::int32_t id, void*) {
  Registrar& registrar = Registrar::Instance();
  EXPECT_FALSE(id == 1 ? registrar.OnJsonMessageText("nope") : registrar.OnJsonMessage(nullptr));
}

TEST_F(RegistrarTest, FaultOfATextWithinAHandlerIsReportedWithoutTheOuterMessage) {
  registrar.Subscribe<SNMPupdateFinished>(ReceiveWithinHandler);
  for (const char* id : {"1", "2"}) {
    EXPECT_TRUE(Receive(Envelope("SNMPupdateFinished", "{}", id)));
  }
  registrar.Unsubscribe<SNMPupdateFinished>(ReceiveWithinHandler);
  const std::vector<Fault> faults = Faults();
  ASSERT_EQ(2u, faults.size());
  for (const Fault& fault : faults) EXPECT_EQ("null", fault.message) << fault.text;
}

TEST_F(RegistrarTest, ParsedValueStaysTheCallers) {
  const auto root = ParseObject(Envelope("SNMPupdateFinished", "{}"));
  EXPECT_TRUE(registrar.OnJsonMessage(root.Get()));
  registrar.ReportError("none is current");
  EXPECT_EQ(1, root->RefCount());
}

TEST_F(RegistrarTest, WithoutASinkReportsAreDropped) {
  registrar.SetErrorSink(nullptr);
  EXPECT_FALSE(Receive("{}"));
  registrar.ReportError("lost %d", 1);
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(RegistrarTest, EmptyReportReachesTheSink) {
  registrar.ReportError("%s", "");
  EXPECT_EQ(Texts{""}, Reports());
}

TEST_F(RegistrarTest, LongReportsAreWhole) {
  for (const std::size_t length : {510u, 511u, 512u, 513u, 5000u}) {
    const std::string text(length, 'x');
    registrar.ReportError("%s", text.c_str());
    EXPECT_EQ(Texts{text}, Reports()) << length;
  }
}

#if !defined(_WIN32)  // no conversion fails on Windows
TEST_F(RegistrarTest, ReportThatCannotBeFormattedIsItsFormat) {
  // Half of a surrogate pair is no character.
  registrar.ReportError("%s: %ls", "lost", L"\xDC00");
  EXPECT_EQ(Texts{"%s: %ls"}, Reports());
}
#endif

TEST_F(RegistrarTest, KeyInAReportMayHoldPercentSigns) {
  registrar.Subscribe<SNMPmessage>(OnMessage);
  registrar.ReportError("%s", "100%s");
  EXPECT_EQ(Texts{"100%s"}, Reports());
}

}  // namespace
}  // namespace Messages::Tests
