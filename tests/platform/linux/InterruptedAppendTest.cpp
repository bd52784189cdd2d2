// A signal that arrives while Files waits for room interrupts the call of the system. The
// text is written all the same.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

#include "platform/Files.h"
#include "tests/platform/linux/Interruption.h"

namespace Vask::Tests {
namespace {

class InterruptedAppendTest : public testing::Test {
 protected:
  static constexpr std::size_t kRoom = 4096;

  static std::string ReadToEnd(int file) {
    std::string text;
    std::array<char, kRoom> piece{};
    for (ssize_t length; (length = read(file, piece.data(), piece.size())) > 0;) {
      text.append(piece.data(), static_cast<std::size_t>(length));
    }
    return text;
  }

  // Appends the text to a pipe with kRoom bytes of room, which holds `before`. A signal arrives
  // while the append waits. Returns what a reader of the pipe then gets.
  static std::string AppendInterrupted(const std::string& before, const std::string& text) {
    std::array<int, 2> pipe{};
    EXPECT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    EXPECT_EQ(fcntl(pipe[1], F_SETPIPE_SZ, static_cast<int>(kRoom)), static_cast<int>(kRoom));
    EXPECT_EQ(write(pipe[1], before.data(), before.size()), std::ssize(before));

    bool appended = false;
    const Interruption interruption;
    std::thread writer = Interruption::Run(SYS_write, [&] {
      appended = Platform::SystemFiles().Append(pipe[1], text.data(), text.size());
      close(pipe[1]);
    });

    std::string got = ReadToEnd(pipe[0]);
    writer.join();
    EXPECT_TRUE(appended);
    close(pipe[0]);
    return got;
  }
};

TEST_F(InterruptedAppendTest, TextIsWrittenWhenThereIsRoomAgain) {
  const std::string full(kRoom, 'x');
  EXPECT_EQ(AppendInterrupted(full, "interrupted"), full + "interrupted");
}

TEST_F(InterruptedAppendTest, TextThatIsHalfWrittenIsContinued) {
  const std::string text = std::string(kRoom, '1') + std::string(kRoom / 2, '2');
  EXPECT_EQ(AppendInterrupted("", text), text);
}

}  // namespace
}  // namespace Vask::Tests
