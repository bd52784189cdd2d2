#include <atomic>
#include <thread>

#include "messages/Registrar.h"
#include "messages/SNMPtrap.h"
#include "net/LinkInterfaces.h"
#include "tests/messages/MessageTest.h"

// Tests what several threads may do at once. The thread sanitizer finds the faults;
// the counts only show that all threads ran.
namespace Messages::Tests {
namespace {

std::atomic<int> s_calls{0};

void First(const SNMPupdateFinished&, std::int32_t, void*) {
  ++s_calls;
}
void Second(const SNMPupdateFinished&, std::int32_t, void*) {
  ++s_calls;
}
void Always(const SNMPupdateFinished&, std::int32_t, void*) {
  ++s_calls;
}
void MovesItself(const SNMPupdateFinished&, std::int32_t, void*) {
  ++s_calls;
  Registrar::Instance().Subscribe<SNMPupdateFinished>(MovesItself);
}

constexpr int kRounds = 2000;
constexpr const char* kFinished = R"({"name":"SNMPupdateFinished","data":{}})";

// The count of living values is exact for one thread only, so this fixture does not
// derive from MessageTest.
class RegistrarThreadsTest : public ::testing::Test {
 protected:
  RegistrarThreadsTest() {
    s_calls = 0;
    registrar.SetErrorSink(&sink);
  }
  ~RegistrarThreadsTest() override {
    registrar.SetErrorSink(nullptr);
    registrar.SetSender(nullptr);
    registrar.SetFrom("");
  }
  Registrar& registrar = Registrar::Instance();
  RecordingSink sink;
};

TEST_F(RegistrarThreadsTest, TwoSubscribeWhileAThirdDispatches) {
  registrar.Subscribe<SNMPupdateFinished>(Always);
  registrar.Subscribe<SNMPupdateFinished>(MovesItself);
  const auto flicker = [this](Handler<SNMPupdateFinished> handler) {
    for (int i = 0; i < kRounds; ++i) {
      registrar.Subscribe<SNMPupdateFinished>(handler);
      registrar.Unsubscribe<SNMPupdateFinished>(handler);
    }
  };
  std::thread first(flicker, First);
  std::thread second(flicker, Second);
  for (int i = 0; i < kRounds; ++i) EXPECT_TRUE(registrar.OnJsonMessageText(kFinished));
  first.join();
  second.join();
  EXPECT_GE(s_calls.load(), 2 * kRounds);
  EXPECT_LE(s_calls.load(), 4 * kRounds);
  s_calls = 0;
  EXPECT_TRUE(registrar.OnJsonMessageText(kFinished));
  EXPECT_EQ(2, s_calls.load());
  registrar.Unsubscribe<SNMPupdateFinished>(Always);
  registrar.Unsubscribe<SNMPupdateFinished>(MovesItself);
}

TEST_F(RegistrarThreadsTest, AfterUnsubscribingNoCallIsUnderWay) {
  static std::atomic<bool> s_alive;
  static std::atomic<int> s_late;
  s_late = 0;
  const Handler<SNMPupdateFinished> handler = [](const SNMPupdateFinished&, std::int32_t, void*) {
    if (!s_alive) ++s_late;
  };
  std::atomic<bool> stop{false};
  std::thread dispatcher([&] {
    while (!stop) registrar.OnJsonMessageText(kFinished);
  });
  // Few rounds, because the lock is not fair to a thread beside a busy dispatcher.
  for (int i = 0; i < 100; ++i) {
    s_alive = true;
    registrar.Subscribe<SNMPupdateFinished>(handler);
    registrar.Unsubscribe<SNMPupdateFinished>(handler);
    s_alive = false;
  }
  stop = true;
  dispatcher.join();
  EXPECT_EQ(0, s_late.load());
}

TEST_F(RegistrarThreadsTest, SendersReportWhileMessagesComeAndGo) {
  std::thread sender([this] {
    const SNMPtrap untyped;
    for (int i = 0; i < kRounds; ++i) EXPECT_FALSE(registrar.SendSNMPtrap(untyped));
  });
  for (int i = 0; i < kRounds; ++i) {
    EXPECT_FALSE(registrar.OnJsonMessageText(R"({"id":1,"name":[1,2,{"deep":"er"}],"data":{}})"));
  }
  sender.join();
  int fromSender = 0;
  for (const Fault& fault : sink.Faults()) {
    fromSender += fault.text.starts_with("EncodeUnion_trapType");
    EXPECT_TRUE(fault.message == "null" ||
                fault.message == R"({"data":{},"id":1,"name":[1,2,{"deep":"er"}]})")
        << fault.message;
  }
  EXPECT_EQ(kRounds, fromSender);
}

class CountingSender final : public Vask::IOnJsonMessage {
 public:
  bool OnJsonMessage(Vask::Json* message) override {
    const std::string text = Compact(*message);
    odd += text != R"({"data":{},"from":"SNMPd","id":0,"name":"SNMPupdate","op":"broadcast"})" &&
           text != R"({"data":{},"from":"","id":0,"name":"SNMPupdate","op":"broadcast"})";
    return true;
  }
  std::atomic<int> odd{0};
};

TEST_F(RegistrarThreadsTest, EndsMayChangeWhileTwoThreadsSend) {
  CountingSender sender;
  RecordingSink otherSink;
  const auto send = [this] {
    for (int i = 0; i < kRounds; ++i) EXPECT_TRUE(registrar.SendSNMPupdate());
  };
  std::thread first(send);
  std::thread second(send);
  for (int i = 0; i < 200; ++i) {
    registrar.SetSender(i % 2 == 0 ? &sender : nullptr);
    registrar.SetFrom(i % 2 == 0 ? "SNMPd" : "");
    registrar.SetErrorSink(i % 2 == 0 ? &otherSink : &sink);
  }
  first.join();
  second.join();
  EXPECT_EQ(0, sender.odd.load());
}

}  // namespace
}  // namespace Messages::Tests
