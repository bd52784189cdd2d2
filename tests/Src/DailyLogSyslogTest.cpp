#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Src/DailyLog.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FaultySockets.h"
#include "tests/support/MemoryFiles.h"

namespace Vask::Tests {
namespace {

using Platform::SocketHandle;

using Texts = std::vector<std::string>;

class DailyLogSyslogTest : public testing::Test {
 protected:
  DailyLogSyslogTest() { sockets.names["known"] = 0x0700000Au; }  // 10.0.0.7 on the wire

  // The calls of the sockets since the last time.
  Texts Calls() { return std::exchange(sockets.calls, {}); }

  // The calls of the sockets for one more line.
  Texts CallsOfALine() {
    sockets.calls.clear();
    log.Info("x\n");
    return Calls();
  }

  FakeClock clock;
  MemoryFiles files;
  FaultySockets sockets;
  DailyLog log{clock, files, sockets};
};

TEST_F(DailyLogSyslogTest, IsOffAtFirst) {
  log.Info("x\n");
  EXPECT_EQ(Calls(), Texts{}) << "no socket is opened before it is needed";
}

TEST_F(DailyLogSyslogTest, TheServerIsAHostWithOrWithoutAPort) {
  const struct {
    const char* host;
    const char* call;
  } rows[] = {
      {"10.0.0.5", "SendTo 10.0.0.5:514"},   {"10.0.0.5:600", "SendTo 10.0.0.5:600"},
      {"localhost", "SendTo 127.0.0.1:514"}, {"localhost:601", "SendTo 127.0.0.1:601"},
      {"known", "SendTo 10.0.0.7:514"},      {"known:602", "SendTo 10.0.0.7:602"},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(log.EnableSyslog(row.host, 0)) << row.host;
    EXPECT_EQ(CallsOfALine(), Texts{row.call}) << row.host;
  }
}

TEST_F(DailyLogSyslogTest, AServerThatCannotBeResolvedChangesNothing) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  for (const char* host : {"10.0.0.6:0", "unknown", "", ":600"}) {
    sockets.calls.clear();
    EXPECT_FALSE(log.EnableSyslog(host, 0)) << host;
    EXPECT_THAT(Calls(), testing::Each(testing::StartsWith("LookUp "))) << host;
    EXPECT_EQ(CallsOfALine(), Texts{"SendTo 10.0.0.5:514"}) << host;
  }
}

TEST_F(DailyLogSyslogTest, EveryLevelIsSentWithItsPriority) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  log.Error("e\n");
  log.Warning("w\n");
  log.Info("i\n");
  log.Trace("t\n");
  EXPECT_EQ(sockets.datagrams,
            (Texts{"<131>Error: e\n", "<132>Warning: w\n", "<134>Info: i\n", "<131>TRACE: t\n"}));
}

TEST_F(DailyLogSyslogTest, ThePortToSendFromIsBoundUnlessItIs0) {
  const Texts unbound = {"OpenUdp", "IgnorePortUnreachable 7"};
  const Texts bound = {"OpenUdp", "IgnorePortUnreachable 7", "AllowAddressReuse 7", "Bind 7 5140"};
  const struct {
    const char* name;
    std::int32_t port;
    Texts calls;
  } rows[] = {
      {"the port used last time is 0 at first", -1, unbound},
      {"a port", 5140, bound},
      {"the port used last time", -1, bound},
      {"any port", 0, unbound},
      {"the port used last time was any", -7, unbound},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(log.EnableSyslog("10.0.0.5", row.port)) << row.name;
    EXPECT_EQ(Calls(), row.calls) << row.name;
    log.DisableSyslog();
    sockets.calls.clear();
  }
}

TEST_F(DailyLogSyslogTest, APortThatCannotBeBoundIsIgnored) {
  sockets.binds = false;
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", 5140));
  EXPECT_EQ(CallsOfALine(), Texts{"SendTo 10.0.0.5:514"});
}

TEST_F(DailyLogSyslogTest, EnablingAgainReplacesTheSocket) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  sockets.calls.clear();
  sockets.nextHandle = 8;
  ASSERT_TRUE(log.EnableSyslog("10.0.0.6", 0));
  EXPECT_EQ(Calls(), (Texts{"Close 7", "OpenUdp", "IgnorePortUnreachable 8"}));
  EXPECT_EQ(CallsOfALine(), Texts{"SendTo 10.0.0.6:514"});
}

TEST_F(DailyLogSyslogTest, WithoutASocketItIsNotEnabled) {
  sockets.nextHandle = Platform::kInvalidSocket;
  EXPECT_FALSE(log.EnableSyslog("10.0.0.5", 0));
  EXPECT_EQ(CallsOfALine(), Texts{});
}

TEST_F(DailyLogSyslogTest, ASocketThatReportsClosedPortsIsUsedToo) {
  sockets.ignoresPortUnreachable = false;
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  EXPECT_EQ(CallsOfALine(), Texts{"SendTo 10.0.0.5:514"});
}

TEST_F(DailyLogSyslogTest, WithoutItsSocketNothingIsSent) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  sockets.nextHandle = Platform::kInvalidSocket;
  EXPECT_FALSE(log.EnableSyslog("10.0.0.6", 0));
  EXPECT_EQ(CallsOfALine(), Texts{});
}

TEST_F(DailyLogSyslogTest, DisablingClosesTheSocketOnce) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  sockets.calls.clear();
  log.DisableSyslog();
  log.DisableSyslog();
  EXPECT_EQ(Calls(), Texts{"Close 7"});
  EXPECT_EQ(CallsOfALine(), Texts{});
}

TEST_F(DailyLogSyslogTest, TheLogsDestructorClosesTheSocket) {
  {
    DailyLog mortal{clock, files, sockets};
    ASSERT_TRUE(mortal.EnableSyslog("10.0.0.5", 0));
    sockets.calls.clear();
  }
  EXPECT_EQ(Calls(), Texts{"Close 7"});
}

// Real datagrams: a receiver on its own port, and the machine's sockets.
class DailyLogDatagramTest : public testing::Test {
 protected:
  DailyLogDatagramTest() {
    m_machine.StartUp();
    m_receiver = m_machine.OpenUdp();
    while (m_port < 42'000 && !m_machine.Bind(m_receiver, m_port)) ++m_port;
  }
  ~DailyLogDatagramTest() override { m_machine.Close(m_receiver); }

  std::string Server() const { return "127.0.0.1:" + std::to_string(m_port); }

  std::string Receive() {
    constexpr std::uint32_t kPatienceMs = 5'000;
    if (m_machine.WaitReadable(m_receiver, kPatienceMs) != Platform::Readiness::Readable) return "";
    char bytes[4'096];
    const int received = m_machine.Receive(m_receiver, bytes, sizeof bytes);
    return received < 0 ? "" : std::string(bytes, static_cast<std::size_t>(received));
  }

  FakeClock clock;
  MemoryFiles files;
  DailyLog log{clock, files};

 private:
  Platform::Sockets& m_machine = Platform::SystemSockets();
  SocketHandle m_receiver = Platform::kInvalidSocket;
  std::uint16_t m_port = 41'514;
};

TEST_F(DailyLogDatagramTest, ALineArrivesAsOneDatagramWithItsLineEndAndNoZero) {
  ASSERT_TRUE(log.EnableSyslog(Server().c_str(), 0));
  log.Info("first\n");
  log.Error("second");
  EXPECT_EQ(Receive(), "<134>Info: first\n");
  EXPECT_EQ(Receive(), "<131>Error: second");
}

TEST_F(DailyLogDatagramTest, AWarningOf2000CharactersArrivesAs1024Bytes) {
  ASSERT_TRUE(log.EnableSyslog(Server().c_str(), 0));
  log.Warning(std::string(2'000, 'w').c_str());
  const std::string datagram = Receive();
  EXPECT_EQ(datagram.size(), 1'024u);
  EXPECT_EQ(datagram, "<132>Warning: " + std::string(1'024 - 14, 'w'));
}

TEST_F(DailyLogDatagramTest, AServerThatDoesNotListenChangesNothing) {
  ASSERT_TRUE(log.EnableSyslog("127.0.0.1:9", 0));
  for (int i = 0; i < 5; ++i) log.Info("lost\n");
  ASSERT_TRUE(log.EnableSyslog(Server().c_str(), -1));
  log.Info("found\n");
  EXPECT_EQ(Receive(), "<134>Info: found\n");
}

}  // namespace
}  // namespace Vask::Tests
