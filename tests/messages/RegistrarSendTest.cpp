#include "messages/Registrar.h"
#include "messages/SNMPtrap.h"
#include "net/LinkInterfaces.h"
#include "tests/messages/MessageTest.h"
#include "tests/support/AllocationCounter.h"

namespace Messages::Tests {
namespace {

// A link that records what is sent.
class RecordingSender final : public Vask::IOnJsonMessage {
 public:
  bool OnJsonMessage(Vask::Json* message) override {
    sent.push_back(Compact(*message));
    return answer;
  }
  Texts sent;
  bool answer = true;
};

class RegistrarSendTest : public MessageTest {
 protected:
  RegistrarSendTest() {
    registrar.SetSender(&sender);
    registrar.SetFrom("SNMPd");
  }
  bool SendTrap(std::uint32_t tag) {
    SNMPtrap trap;
    trap.m_trapType.m_tag = tag;
    return registrar.SendSNMPtrap(trap);
  }
  template <class Call>
  static unsigned ValuesMadeBy(Call call) {
    const unsigned before = Vask::Json::Constructed();
    call();
    return Vask::Json::Constructed() - before;
  }
  RecordingSender sender;
};

TEST_F(RegistrarSendTest, UpdateRequestIsItsEnvelopeInKeyOrder) {
  EXPECT_TRUE(registrar.SendSNMPupdate());
  EXPECT_EQ(Texts{R"({"data":{},"from":"SNMPd","id":0,"name":"SNMPupdate","op":"broadcast"})"},
            sender.sent);
  EXPECT_EQ(70u, sender.sent[0].size());
}

TEST_F(RegistrarSendTest, TrapGoesOutWithFoldedKeys) {
  EXPECT_TRUE(SendTrap(SNMPtrap::kAudioSourcesFailed));
  EXPECT_EQ(Texts{R"({"data":{"traptype":{"audiosourcesfailed":{}}},"from":"SNMPd","id":0,)"
                  R"("name":"SNMPtrap","op":"broadcast"})"},
            sender.sent);
}

TEST_F(RegistrarSendTest, WhatIsSentCanBeReceived) {
  EXPECT_TRUE(SendTrap(SNMPtrap::kStreamMonitorsSilenceDetectPassed));
  ASSERT_EQ(1u, sender.sent.size());
  EXPECT_TRUE(registrar.OnJsonMessageText(sender.sent[0].c_str()));
  SNMPtrap trap;
  const auto envelope = ParseObject(sender.sent[0]);
  EXPECT_TRUE(
      DecodeStruct_SNMPtrap(static_cast<const Vask::JsonObject&>(*envelope->Find("data")), trap));
  EXPECT_EQ(12u, trap.m_trapType.m_tag);
}

TEST_F(RegistrarSendTest, TrapWithoutTypeIsReportedAndNotSent) {
  EXPECT_FALSE(SendTrap(SNMPtrap::kEmpty));
  EXPECT_EQ(Texts{}, sender.sent);
  EXPECT_EQ(Texts{"EncodeUnion_trapType: Union tag not understood for 'SNMPtrap::trapType' "
                  "(tag=15)"},
            Reports());
}

TEST_F(RegistrarSendTest, WithoutASenderTheMessageIsBuiltAndNotSent) {
  registrar.SetSender(nullptr);
  // The envelope and its five members.
  EXPECT_EQ(6u, ValuesMadeBy([this] { EXPECT_TRUE(registrar.SendSNMPupdate()); }));
  // The same, and the objects of trapType and of its alternative.
  EXPECT_EQ(8u, ValuesMadeBy([this] { EXPECT_TRUE(SendTrap(SNMPtrap::kStreamsOK)); }));
  EXPECT_FALSE(SendTrap(SNMPtrap::kEmpty));
  EXPECT_EQ(Texts{}, sender.sent);
}

TEST_F(RegistrarSendTest, ResultOfTheLinkIsIgnored) {
  sender.answer = false;
  EXPECT_TRUE(registrar.SendSNMPupdate());
  EXPECT_TRUE(SendTrap(SNMPtrap::kStreamsFailed));
  EXPECT_EQ(2u, sender.sent.size());
}

TEST_F(RegistrarSendTest, FromIsTheLatestText) {
  registrar.SetFrom("other \"one\"");
  EXPECT_TRUE(registrar.SendSNMPupdate());
  registrar.SetFrom("");
  EXPECT_TRUE(registrar.SendSNMPupdate());
  EXPECT_EQ(
      (Texts{R"({"data":{},"from":"other \"one\"","id":0,"name":"SNMPupdate","op":"broadcast"})",
             R"({"data":{},"from":"","id":0,"name":"SNMPupdate","op":"broadcast"})"}),
      sender.sent);
}

TEST_F(RegistrarSendTest, FromIsCopied) {
  char from[] = "SNMPd";
  registrar.SetFrom(from);
  from[0] = '#';
  EXPECT_TRUE(registrar.SendSNMPupdate());
  EXPECT_NE(std::string::npos, sender.sent[0].find(R"("from":"SNMPd")"));
}

// The registrar keeps every text for its senders, so the same text must not be added again.
TEST_F(RegistrarSendTest, SettingTheSameFromAgainTakesNoMemory) {
  const auto before = Vask::Tests::Allocations();
  registrar.SetFrom("SNMPd");
  EXPECT_EQ(before, Vask::Tests::Allocations());
}

void SendFromHandler(const SNMPupdateFinished&, std::int32_t, void*) {
  EXPECT_TRUE(Registrar::Instance().SendSNMPupdate());
}

TEST_F(RegistrarSendTest, HandlerMaySend) {
  registrar.Subscribe<SNMPupdateFinished>(SendFromHandler);
  EXPECT_TRUE(registrar.OnJsonMessageText(R"({"name":"SNMPupdateFinished","data":{}})"));
  registrar.Unsubscribe<SNMPupdateFinished>(SendFromHandler);
  EXPECT_EQ(1u, sender.sent.size());
}

}  // namespace
}  // namespace Messages::Tests
