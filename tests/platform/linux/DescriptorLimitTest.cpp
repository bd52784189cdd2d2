#include <gtest/gtest.h>
#include <sys/resource.h>

#include "platform/ListeningSocket.h"
#include "platform/Sockets.h"
#include "platform/Threading.h"

namespace Vask::Platform {
namespace {

// While one lives, the process can open no descriptor.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &m_before);
    rlimit none = m_before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
  }
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;

 private:
  rlimit m_before{};
};

void ExpectThatAllOpen(bool expected) {
  ListeningSocket listener;
  EXPECT_EQ(listener.Open(0), expected);
  EXPECT_EQ(listener.IsOpen(), expected);
  EXPECT_EQ(SystemSocket(SystemSockets().OpenTcp()).Valid(), expected);
  EXPECT_EQ(SystemSocket(SystemSockets().OpenUdp()).Valid(), expected);
  const NativeHandle event = SystemThreading().CreateEvent(EventReset::Manual);
  EXPECT_EQ(event != nullptr, expected);
  if (event != nullptr) SystemThreading().CloseEvent(event);
}

// First with descriptors: the undefined-behaviour sanitizer itself needs one for its first
// look at an object.
TEST(DescriptorLimitTest, NothingOpensWithoutADescriptor) {
  ExpectThatAllOpen(true);
  const NoDescriptors limit;
  ExpectThatAllOpen(false);
}

}  // namespace
}  // namespace Vask::Platform
