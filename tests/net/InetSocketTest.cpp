#include "net/InetSocket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FaultySockets.h"
#include "tests/support/ForwardingSockets.h"
#include "tests/support/RecordingLog.h"

namespace Vask::Tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kPeer[] = "127.0.0.1";

class InetSocketTest : public testing::Test {
 protected:
  void Connect() {
    ASSERT_TRUE(socket.Connect(kPeer, 600));
    sockets.calls.clear();
  }

  FaultySockets sockets;
  RecordingLog log;
  InetSocketConnector socket{sockets};
};

struct SendRow {
  const char* name;
  std::vector<int> results;  // what the system's send returns, call by call
  bool wouldBlock;
  std::int32_t sent;
  std::vector<std::string> calls;
};

void PrintTo(const SendRow& row, std::ostream* out) {
  *out << row.name << ": results " << testing::PrintToString(row.results);
}

class InetSocketSends : public InetSocketTest, public testing::WithParamInterface<SendRow> {};

TEST_P(InetSocketSends, ReturnTheNumberOfBytesSent) {
  Connect();
  sockets.sendResults.assign(GetParam().results.begin(), GetParam().results.end());
  sockets.wouldBlock = GetParam().wouldBlock;
  EXPECT_EQ(socket.Send("abcde", 5), GetParam().sent);
  EXPECT_EQ(sockets.calls, GetParam().calls);
}

constexpr int kAll = FaultySockets::kEverything;

INSTANTIATE_TEST_SUITE_P(
    Rows, InetSocketSends,
    testing::Values(
        SendRow{"AllAtOnce", {kAll}, false, 5, {"Send 7 abcde"}},
        SendRow{"InPieces", {2, 1, kAll}, false, 5, {"Send 7 abcde", "Send 7 cde", "Send 7 de"}},
        SendRow{"NothingTaken", {0}, false, 0, {"Send 7 abcde"}},
        SendRow{"NothingMoreTaken", {3, 0}, false, 3, {"Send 7 abcde", "Send 7 de"}},
        SendRow{"Failed", {-1}, false, -1, {"Send 7 abcde"}},
        SendRow{"FailedAfterAPiece", {3, -1}, false, -1, {"Send 7 abcde", "Send 7 de"}},
        SendRow{"WouldBlock", {-1}, true, -2, {"Send 7 abcde"}},
        SendRow{"WouldBlockAfterAByte", {1, -1}, true, 1, {"Send 7 abcde", "Send 7 bcde"}},
        SendRow{"WouldBlockAfterAPiece", {3, -1}, true, 3, {"Send 7 abcde", "Send 7 de"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(InetSocketTest, LengthZeroSendsNothing) {
  Connect();
  EXPECT_EQ(socket.Send("abc", 0), 0);
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST_F(InetSocketTest, NegativeLengthMeasuresTheText) {
  Connect();
  EXPECT_EQ(socket.Send("abc", -1), 3);
  EXPECT_THAT(sockets.calls, ElementsAre("Send 7 abc"));
}

TEST_F(InetSocketTest, NegativeLengthOfAnEmptyTextSendsNothing) {
  Connect();
  EXPECT_EQ(socket.Send("", -5), 0);
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST_F(InetSocketTest, CloseOfASocketThatWasNeverConnectedDoesNothing) {
  socket.Close();
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST_F(InetSocketTest, CloseDisconnectsBeforeItClosesTheHandle) {
  Connect();
  socket.Close();
  EXPECT_THAT(sockets.calls, ElementsAre("Disconnect 7", "Shutdown 7", "Close 7"));
  EXPECT_EQ(socket.Handle(), Platform::kInvalidSocket);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(InetSocketTest, SecondCloseDoesNothing) {
  Connect();
  socket.Close();
  sockets.calls.clear();
  socket.Close();
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST_F(InetSocketTest, MissingDisconnectExIsLoggedAndTheSocketClosed) {
  Connect();
  sockets.disconnection = Platform::Disconnection::NotAvailable;
  socket.Close();
  EXPECT_THAT(log.Lines(),
              ElementsAre("Error: Socket close: Error doing WSAIoctl to load DisconnectEx!\n"));
  EXPECT_THAT(sockets.calls, ElementsAre("Disconnect 7", "Shutdown 7", "Close 7"));
}

TEST_F(InetSocketTest, ExceptionInDisconnectExIsLoggedAndTheSocketClosed) {
  Connect();
  sockets.disconnection = Platform::Disconnection::Raised;
  socket.Close();
  EXPECT_THAT(log.Lines(),
              ElementsAre("Error: Socket close: Exception while calling DisconnectEx!\n"));
  EXPECT_THAT(sockets.calls, ElementsAre("Disconnect 7", "Shutdown 7", "Close 7"));
}

TEST_F(InetSocketTest, DestructorCloses) {
  {
    InetSocketConnector shortLived(sockets);
    ASSERT_TRUE(shortLived.Connect(kPeer, 600));
    sockets.calls.clear();
  }
  EXPECT_THAT(sockets.calls, ElementsAre("Disconnect 7", "Shutdown 7", "Close 7"));
}

TEST_F(InetSocketTest, ShutdownKeepsTheHandle) {
  Connect();
  socket.Shutdown();
  EXPECT_THAT(sockets.calls, ElementsAre("Shutdown 7"));
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(InetSocketTest, ShutdownOfAClosedSocketDoesNothing) {
  socket.Shutdown();
  EXPECT_THAT(sockets.calls, IsEmpty());
}

// Closes the connection from another thread while a shutdown has looked at the handle and
// is about to use it.
class SocketsThatCloseMeanwhile final : public ForwardingSockets {
 public:
  using ForwardingSockets::ForwardingSockets;

  InetSocket* socket = nullptr;
  std::thread closing;
  bool isTakenMeanwhile = false;

  void Shutdown(Platform::SocketHandle) noexcept override {
    if (closing.joinable()) return;
    closing = std::thread([this] { socket->Close(); });
    isTakenMeanwhile =
        m_taken.get_future().wait_for(std::chrono::milliseconds(200)) == std::future_status::ready;
  }
  Platform::Disconnection Disconnect(Platform::SocketHandle handle) noexcept override {
    m_taken.set_value();
    return ForwardingSockets::Disconnect(handle);
  }

 private:
  std::promise<void> m_taken;
};

TEST(InetSocketThreadTest, CloseWaitsForAShutdownThatUsesTheHandle) {
  FaultySockets noNetwork;
  SocketsThatCloseMeanwhile sockets(noNetwork);
  InetSocketConnector socket(sockets);
  sockets.socket = &socket;
  ASSERT_TRUE(socket.Connect(kPeer, 600));
  socket.Shutdown();
  sockets.closing.join();
  EXPECT_FALSE(sockets.isTakenMeanwhile);
  EXPECT_EQ(socket.Handle(), Platform::kInvalidSocket);
}

class InetSocketConnectorTest : public testing::Test {
 protected:
  FaultySockets sockets;
  InetSocketConnector socket{sockets};
};

TEST_F(InetSocketConnectorTest, ConnectsAndSetsBlockingMode) {
  EXPECT_TRUE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("OpenTcp", "Connect 7 127.0.0.1:16969", "SetBlocking 7"));
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(InetSocketConnectorTest, ClosesTheOldConnectionFirst) {
  ASSERT_TRUE(socket.Connect("127.0.0.1", 16969));
  sockets.calls.clear();
  sockets.nextHandle = 8;
  EXPECT_TRUE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("Disconnect 7", "Shutdown 7", "Close 7", "OpenTcp",
                                         "Connect 8 127.0.0.1:16969", "SetBlocking 8"));
}

TEST_F(InetSocketConnectorTest, AddressThatCannotBeFoundChangesNothing) {
  ASSERT_TRUE(socket.Connect("127.0.0.1", 16969));
  sockets.calls.clear();
  EXPECT_FALSE(socket.Connect("127.0.0.1", 0));
  EXPECT_THAT(sockets.calls, IsEmpty());
  EXPECT_EQ(socket.Handle(), 7u);
}

TEST_F(InetSocketConnectorTest, ConnectFailsIfNoSocketCanBeCreated) {
  sockets.nextHandle = Platform::kInvalidSocket;
  EXPECT_FALSE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("OpenTcp"));
}

TEST_F(InetSocketConnectorTest, FailedConnectClosesTheHandle) {
  sockets.connects = false;
  EXPECT_FALSE(socket.Connect("127.0.0.1", 16969));
  EXPECT_THAT(sockets.calls, ElementsAre("OpenTcp", "Connect 7 127.0.0.1:16969", "Close 7"));
  EXPECT_EQ(socket.Handle(), Platform::kInvalidSocket);
}

TEST_F(InetSocketConnectorTest, CloseAfterAFailedConnectDoesNothing) {
  sockets.connects = false;
  ASSERT_FALSE(socket.Connect("127.0.0.1", 16969));
  sockets.calls.clear();
  socket.Close();
  EXPECT_THAT(sockets.calls, IsEmpty());
}

}  // namespace
}  // namespace Vask::Tests
