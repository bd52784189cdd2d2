#include "Src/SyslogSender.h"

#include <gtest/gtest.h>

#include <string>

#include "Src/LogHead.h"
#include "tests/support/FaultySockets.h"

namespace Vask::Tests {
namespace {

std::string Datagram(LogLevel level, const std::string& text) {
  char datagram[kSyslogCapacity];
  const std::size_t length = BuildSyslogDatagram(LogPrefix(level), text, datagram);
  return std::string(datagram, length);
}

TEST(SyslogDatagramTest, ThePriorityFollowsTheLevel) {
  EXPECT_EQ(Datagram(LogLevel::Error, "x\n"), "<131>Error: x\n");
  EXPECT_EQ(Datagram(LogLevel::Warning, "x\n"), "<132>Warning: x\n");
  EXPECT_EQ(Datagram(LogLevel::Info, "x\n"), "<134>Info: x\n");
  EXPECT_EQ(Datagram(LogLevel::Trace, "x\n"), "<131>TRACE: x\n");
}

TEST(SyslogDatagramTest, AWarningOf2000CharactersFills1024Bytes) {
  const std::string whole = "<132>Warning: " + std::string(2000, 'w');
  EXPECT_EQ(Datagram(LogLevel::Warning, std::string(2000, 'w')), whole.substr(0, 1024));
}

TEST(SyslogDatagramTest, ALineEndThatJustFitsIsSent) {
  const std::string head = "<134>Info: ";
  const std::string fits = std::string(1024 - head.size() - 1, 'i') + "\n";
  EXPECT_EQ(Datagram(LogLevel::Info, fits), head + fits);
  EXPECT_EQ(Datagram(LogLevel::Info, "i" + fits), head + "i" + fits.substr(0, fits.size() - 1));
}

TEST(SyslogDatagramTest, AnEmptyTextIsSentAsItsPrefix) {
  EXPECT_EQ(Datagram(LogLevel::Info, ""), "<134>Info: ");
}

TEST(SyslogSenderTest, IsOnFromEnableToDisable) {
  FaultySockets sockets;
  SyslogSender sender(sockets);
  EXPECT_FALSE(sender.Enabled());
  ASSERT_TRUE(sender.Enable(InetAddress2(sockets), 0));
  EXPECT_TRUE(sender.Enabled());
  sender.Disable();
  EXPECT_FALSE(sender.Enabled());
  sender.Send("Info: ", "nobody gets this");
  EXPECT_TRUE(sockets.datagrams.empty());
}

}  // namespace
}  // namespace Vask::Tests
