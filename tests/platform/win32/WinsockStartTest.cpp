#include <gtest/gtest.h>
#include <winsock2.h>

#include "platform/Sockets.h"

namespace Vask::Tests {
namespace {

// Winsock's error before any test has run, when the whole program, and so the
// agent's code, has been loaded and initialised.
int g_errorAfterLoading = 0;

class LookAtWinsock : public testing::Environment {
 public:
  void SetUp() override {
    const SOCKET opened = socket(AF_INET, SOCK_STREAM, 0);
    if (opened == INVALID_SOCKET) {
      g_errorAfterLoading = WSAGetLastError();
    } else {
      closesocket(opened);
    }
  }
};

const testing::Environment* const g_look = testing::AddGlobalTestEnvironment(new LookAtWinsock);

TEST(WinsockStartTest, LoadingDoesNotStartWinsock) {
  ASSERT_NE(g_look, nullptr);
  EXPECT_EQ(g_errorAfterLoading, WSANOTINITIALISED);
}

TEST(WinsockStartTest, FirstSocketStartsWinsock) {
  Platform::Sockets& sockets = Platform::SystemSockets();
  const Platform::SocketHandle socket = sockets.OpenTcp();
  EXPECT_NE(socket, Platform::kInvalidSocket);
  sockets.Close(socket);
  EXPECT_TRUE(sockets.StartUp());
}

}  // namespace
}  // namespace Vask::Tests
