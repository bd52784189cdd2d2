#include <cctype>
#include <map>

#include "tests/messages/AllMessages.h"
#include "tests/messages/MessageTest.h"

namespace Messages::Tests {
namespace {

// Returns a body that decodes: an empty one if the message accepts it.
std::string GoodBody(const std::string& name) {
  static const std::map<std::string, std::string> bodies = {
      {"Confirmation", R"({"result":0,"message":""})"},
      {"GetAudioOutputDeviceList", R"({"procName":""})"},
      {"GlobalOptions",
       R"({"adminpass":"","adminuser":"","fromemail":"","fromname":"","notifyemail":"",
           "smtpusername":"","smtppassword":"","smtpserver":"","reconnecttimeout":0,
           "emailonerror":0,"httpport":0,"httpsport":0,"smtpserverport":0,"streamserverport":0,
           "usessl":0,"waitintervalsec":0})"},
      {"GlobalOptions2",
       R"({"adminpass":"","blankadminpass":0,"adminuser":"","qxremotepass":"",
           "blankqxremotepass":0,"fromemail":"","fromname":"","notifyemail":"","smtpusername":"",
           "smtppassword":"","smtpserver":"","syslogserver":"","streamsfolder":"",
           "commonfolder":"","tdadapter":"","reconnecttimeout":0,"emailonerror":0,"httpport":0,
           "httpsport":0,"smtpserverport":0,"streamserverport":0,"httpresourceserverport":0,
           "usessl":0,"waitintervalsec":0,"daystokeeplogs":0})"},
      {"ProductVersion",
       R"({"productname":"","productversion":"","productbuild":"","productcopyright":""})"},
      {"ProcessInfo",
       R"({"version":"","buildDate":"","cpuKernelPercent":"","cpuUserPercent":"",
           "workingSetBytes":"","handleCount":0})"},
      {"ProcessList", R"({"processes":{}})"},
      {"ProcessList2", R"({"processes":{}})"},
      {"SNMPmessage", R"({"messageType":{"Streams":{"Count":0,"Errors":0}}})"},
      {"SNMPsequence", R"({"sequenceType":"","entries":{}})"},
      {"SNMPtrap", R"({"trapType":{"StreamsOK":{}}})"},
  };
  const auto found = bodies.find(name);
  return found != bodies.end() ? found->second : "{}";
}

class EveryMessageTest : public MessageTest, public ::testing::WithParamInterface<std::size_t> {
 protected:
  EveryMessageTest() { Handled(); }

  const Message& Tested() const { return AllMessages()[GetParam()]; }
  bool Receive(std::string name, const std::string& data) {
    return registrar.OnJsonMessageText(
        (R"({"name":")" + name + R"(","data":)" + data + R"(,"id":9})").c_str());
  }
  std::string Mark(int id) const { return HandledAs(GetParam(), id); }
};

TEST_P(EveryMessageTest, CanBeSubscribedReceivedAndUnsubscribed) {
  const std::string body = GoodBody(Tested().name);
  EXPECT_TRUE(Receive(Tested().name, body));
  EXPECT_EQ("", Handled());

  Tested().subscribe();
  EXPECT_TRUE(Receive(Tested().name, body));
  EXPECT_EQ(Mark(9), Handled());

  Tested().unsubscribe();
  EXPECT_TRUE(Receive(Tested().name, body));
  EXPECT_EQ("", Handled());
  EXPECT_EQ(Texts{}, Reports());
}

TEST_P(EveryMessageTest, CanBeDispatched) {
  Tested().subscribe();
  Tested().dispatch();
  EXPECT_EQ(Mark(3), Handled());
  Tested().unsubscribe();
  Tested().dispatch();
  EXPECT_EQ("", Handled());
}

TEST_P(EveryMessageTest, IsMatchedWithoutRegardToCaseAndOnlyWhole) {
  Tested().subscribe();
  std::string upper = Tested().name;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  std::string lower = Tested().name;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const std::string body = GoodBody(Tested().name);
  EXPECT_TRUE(Receive(upper, body));
  EXPECT_EQ(Mark(9), Handled());
  EXPECT_TRUE(Receive(lower, body));
  EXPECT_EQ(Mark(9), Handled());
  for (const std::string& other : {lower + "x", "x" + lower, lower.substr(1),
                                   lower.substr(0, lower.size() - 1), lower + "2"}) {
    EXPECT_TRUE(Receive(other, body)) << other;
    EXPECT_EQ("", Handled()) << other;
  }
  Tested().unsubscribe();
  EXPECT_EQ(Texts{}, Reports());
}

// The body lacks every required field, and only a decoder that runs reports this.
TEST_P(EveryMessageTest, IsSkippedWithoutDecodingUntilAHandlerSubscribes) {
  const bool strict = GoodBody(Tested().name) != "{}";
  EXPECT_TRUE(Receive(Tested().name, R"({"nothing":"expected"})"));
  EXPECT_EQ(Texts{}, Reports());

  Tested().subscribe();
  EXPECT_EQ(!strict, Receive(Tested().name, R"({"nothing":"expected"})"));
  EXPECT_EQ(strict ? 1u : 0u, Reports().size());
  EXPECT_EQ(strict ? "" : Mark(9), Handled());
  Tested().unsubscribe();
}

TEST_P(EveryMessageTest, NeedsAnObjectAsDataEvenWithoutSubscribers) {
  EXPECT_FALSE(Receive(Tested().name, "[]"));
  EXPECT_EQ(1u, Reports().size());
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryMessageTest,
                         ::testing::Range(std::size_t{0}, kCatalogueSize),
                         [](const auto& test) { return AllMessages()[test.param].name; });

// These requests carry no fields.
TEST(FieldLessRequestsTest, AreFieldLess) {
  for (const char* name :
       {"GetPresetList", "GetPresetList2", "GetMetadataFilterList", "GetMetadataFilterList2",
        "GetMetadataSourceList", "GetMetadata2SourceList", "GetTandemChannelsList", "SNMPupdate",
        "SNMPupdateFinished", "SwitchEvents", "GetSwitchEvent", "UpdateSwitchEvent",
        "DeleteSwitchEvent", "GetNtpConfiguration"}) {
    const std::size_t index = FindInCatalogue(name);
    ASSERT_LT(index, kCatalogueSize) << name;
    EXPECT_EQ(MessageBody::FIELDLESS, kCatalogue[index].body) << name;
  }
}

}  // namespace
}  // namespace Messages::Tests
