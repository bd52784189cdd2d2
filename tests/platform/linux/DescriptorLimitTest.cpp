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

TEST(DescriptorLimitTest, NothingOpensWithoutADescriptor) {
  ListeningSocket listener;
  const NoDescriptors limit;
  EXPECT_FALSE(listener.Open(0));
  EXPECT_FALSE(listener.IsOpen());
  EXPECT_EQ(SystemSockets().OpenTcp(), kInvalidSocket);
  EXPECT_EQ(SystemSockets().OpenUdp(), kInvalidSocket);
  EXPECT_EQ(SystemThreading().CreateEvent(EventReset::Manual), nullptr);
}

}  // namespace
}  // namespace Vask::Platform
