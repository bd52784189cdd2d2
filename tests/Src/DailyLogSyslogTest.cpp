#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "Src/DailyLog.h"
#include "tests/support/FakeClock.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/RecordingSockets.h"

namespace Vask::Tests {
namespace {

using Platform::SocketHandle;

std::uint16_t PortOf(const Platform::SocketAddress& address) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&address.portNetworkOrder);
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

// As "10.0.0.5:514".
std::string Text(const Platform::SocketAddress& address) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&address.addressNetworkOrder);
  std::ostringstream text;
  text << +bytes[0] << '.' << +bytes[1] << '.' << +bytes[2] << '.' << +bytes[3] << ':'
       << PortOf(address);
  return text.str();
}

class DailyLogSyslogTest : public testing::Test {
 protected:
  // Where the last line went; empty when nothing was sent.
  std::string Destination() {
    const std::size_t before = sockets.sent.size();
    log.Info("x\n");
    return sockets.sent.size() == before ? "" : Text(sockets.sent.back().destination);
  }

  FakeClock clock;
  MemoryFiles files;
  RecordingSockets sockets;
  DailyLog log{clock, files, sockets};
};

TEST_F(DailyLogSyslogTest, IsOffAtFirst) {
  EXPECT_EQ(Destination(), "");
  EXPECT_TRUE(sockets.opened.empty()) << "no socket before it is needed";
}

TEST_F(DailyLogSyslogTest, TheServerIsAHostWithOrWithoutAPort) {
  const struct {
    const char* host;
    const char* destination;
  } rows[] = {
      {"10.0.0.5", "10.0.0.5:514"},   {"10.0.0.5:600", "10.0.0.5:600"},
      {"localhost", "127.0.0.1:514"}, {"localhost:601", "127.0.0.1:601"},
      {"known", "10.0.0.7:514"},      {"known:602", "10.0.0.7:602"},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(log.EnableSyslog(row.host, 0)) << row.host;
    EXPECT_EQ(Destination(), row.destination) << row.host;
  }
}

TEST_F(DailyLogSyslogTest, AServerThatCannotBeHadChangesNothing) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  for (const char* host : {"10.0.0.6:0", "unknown", "", ":600"}) {
    EXPECT_FALSE(log.EnableSyslog(host, 0)) << host;
    EXPECT_EQ(Destination(), "10.0.0.5:514") << host;
  }
  EXPECT_EQ(sockets.opened.size(), 1u);
}

TEST_F(DailyLogSyslogTest, EveryLevelIsSentWithItsPriority) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  log.Error("e\n");
  log.Warning("w\n");
  log.Info("i\n");
  log.Trace("t\n");
  std::vector<std::string> datagrams;
  for (const auto& datagram : sockets.sent) datagrams.push_back(datagram.bytes);
  EXPECT_EQ(datagrams, (std::vector<std::string>{"<131>Error: e\n", "<132>Warning: w\n",
                                                 "<134>Info: i\n", "<131>TRACE: t\n"}));
}

TEST_F(DailyLogSyslogTest, ThePortToSendFromIsBoundUnlessItIs0) {
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", -1));
  EXPECT_TRUE(sockets.boundPorts.empty()) << "the port used last time is 0 at first";
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", 5140));
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", -1));
  EXPECT_EQ(sockets.boundPorts, (std::vector<std::uint16_t>{5140, 5140}));
  EXPECT_EQ(sockets.reused, 2u);
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", -7));
  EXPECT_EQ(sockets.boundPorts.size(), 2u);
}

TEST_F(DailyLogSyslogTest, WhetherThePortCouldBeBoundIsNotLookedAt) {
  sockets.binds = false;
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", 5140));
  EXPECT_EQ(Destination(), "10.0.0.5:514");
}

TEST_F(DailyLogSyslogTest, EnablingAgainReplacesTheSocket) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  ASSERT_TRUE(log.EnableSyslog("10.0.0.6", 0));
  EXPECT_EQ(Destination(), "10.0.0.6:514");
  ASSERT_EQ(sockets.opened.size(), 2u);
  EXPECT_EQ(sockets.closed, std::vector<SocketHandle>{sockets.opened[0]});
  EXPECT_EQ(sockets.sent.back().socket, sockets.opened[1]);
}

TEST_F(DailyLogSyslogTest, WithoutASocketItIsNotEnabled) {
  sockets.opensSockets = false;
  EXPECT_FALSE(log.EnableSyslog("10.0.0.5", 0));
  EXPECT_EQ(Destination(), "");
}

TEST_F(DailyLogSyslogTest, ASocketThatStillHearsOfClosedPortsServesAllTheSame) {
  sockets.ignoresPortUnreachable = false;
  EXPECT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  EXPECT_EQ(Destination(), "10.0.0.5:514");
}

TEST_F(DailyLogSyslogTest, LosingTheSocketSendsNothingAnyMore) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  sockets.opensSockets = false;
  EXPECT_FALSE(log.EnableSyslog("10.0.0.6", 0));
  EXPECT_EQ(Destination(), "");
}

TEST_F(DailyLogSyslogTest, DisablingClosesTheSocket) {
  ASSERT_TRUE(log.EnableSyslog("10.0.0.5", 0));
  log.DisableSyslog();
  EXPECT_EQ(Destination(), "");
  EXPECT_EQ(sockets.closed, sockets.opened);
  log.DisableSyslog();
  EXPECT_EQ(sockets.closed.size(), 1u);
}

TEST_F(DailyLogSyslogTest, TheSocketIsClosedWithTheLog) {
  {
    DailyLog mortal{clock, files, sockets};
    ASSERT_TRUE(mortal.EnableSyslog("10.0.0.5", 0));
  }
  EXPECT_EQ(sockets.closed, sockets.opened);
}

// Real datagrams: a receiver on a port of its own, and the machine's sockets.
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

TEST_F(DailyLogDatagramTest, AServerThatDoesNotListenHarmsNothing) {
  ASSERT_TRUE(log.EnableSyslog("127.0.0.1:9", 0));
  for (int i = 0; i < 5; ++i) log.Info("lost\n");
  ASSERT_TRUE(log.EnableSyslog(Server().c_str(), -1));
  log.Info("found\n");
  EXPECT_EQ(Receive(), "<134>Info: found\n");
}

}  // namespace
}  // namespace Vask::Tests
