#include "net/Framing.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "net/LinkInterfaces.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LinkRecorders.h"

namespace Vask::Tests {
namespace {

struct WriterRow {
  const char* name;
  std::string body;
  std::string frame;
};

void PrintTo(const WriterRow& row, std::ostream* out) {
  *out << row.name << ": " << row.body;
}

class FrameWriterTest : public testing::TestWithParam<WriterRow> {};

TEST_P(FrameWriterTest, WritesLengthHashAndBody) {
  std::string out = "before ";
  AppendFrame(out, GetParam().body);
  EXPECT_EQ(out, "before " + GetParam().frame);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, FrameWriterTest,
    testing::Values(WriterRow{"Example", R"({"a":1})", R"(7#{"a":1})"},
                    WriterRow{"Empty", "", "0#"},
                    WriterRow{"TwoDigits", "0123456789", "10#0123456789"},
                    WriterRow{"BytesCountNotCharacters", "\xC3\xA9", "2#\xC3\xA9"},
                    WriterRow{"ZeroByte", std::string("\0", 1), std::string("1#\0", 3)}),
    [](const auto& row) { return std::string(row.param.name); });

// A reader with a connection, and what it delivered.
class FrameReaderTest : public testing::Test {
 protected:
  FrameReaderTest() {
    m_reader.SetListener(&m_listener);
    m_reader.SetErrorSink(&m_sink);
    m_reader.Begin();
  }

  // Feeds until the reader refuses a byte. Returns true if it took all.
  bool Feed(std::string_view bytes) {
    for (const char byte : bytes) {
      if (!m_reader.ProcessByte(byte)) return false;
    }
    return true;
  }

  std::vector<std::string> Bodies() const { return m_listener.recorder.Texts(); }
  std::vector<std::string> Faults() const { return m_sink.recorder.Texts(); }

  RecordingTextListener m_listener;
  RecordingErrorSink m_sink;
  FrameReader m_reader;
};

using Texts = std::vector<std::string>;

TEST_F(FrameReaderTest, DeliversTheBodyOfAFrame) {
  EXPECT_TRUE(Feed(R"(7#{"a":1})"));
  EXPECT_EQ(Bodies(), Texts{R"({"a":1})"});
  EXPECT_EQ(Faults(), Texts{});
  EXPECT_EQ(m_reader.GetState(), FrameReader::kReadingSize);
}

TEST_F(FrameReaderTest, DeliversOnlyWithTheLastByte) {
  EXPECT_TRUE(Feed("3#ab"));
  EXPECT_EQ(Bodies(), Texts{});
  EXPECT_EQ(m_reader.GetState(), FrameReader::kReadingBody);
  EXPECT_TRUE(Feed("c"));
  EXPECT_EQ(Bodies(), Texts{"abc"});
}

TEST_F(FrameReaderTest, FramesFollowOneAnotherWithNothingInBetween) {
  EXPECT_TRUE(Feed("1#a12#bbbbbbbbbbbb2#cc"));
  EXPECT_EQ(Bodies(), (Texts{"a", "bbbbbbbbbbbb", "cc"}));
}

TEST_F(FrameReaderTest, BodyMayHoldDigitsAndHashes) {
  EXPECT_TRUE(Feed("5#12#34"));
  EXPECT_EQ(Bodies(), Texts{"12#34"});
}

TEST_F(FrameReaderTest, LeadingZerosOfALengthDoNotMatter) {
  EXPECT_TRUE(Feed("0003#abc"));
  EXPECT_EQ(Bodies(), Texts{"abc"});
}

TEST_F(FrameReaderTest, BodyIsPassedOnUpToItsFirstZeroByte) {
  EXPECT_TRUE(Feed(std::string_view("3#a\0b", 5)));
  EXPECT_EQ(Bodies(), Texts{"a"});
}

TEST_F(FrameReaderTest, RejectedBodyDoesNotStopTheStream) {
  m_listener.accepts = false;
  EXPECT_TRUE(Feed("1#a1#b"));
  EXPECT_EQ(Bodies(), (Texts{"a", "b"}));
}

TEST_F(FrameReaderTest, WithoutListenerBodiesAreDropped) {
  m_reader.SetListener(nullptr);
  EXPECT_TRUE(Feed("1#a"));
  m_reader.SetListener(&m_listener);
  EXPECT_TRUE(Feed("1#b"));
  EXPECT_EQ(Bodies(), Texts{"b"});
}

struct FaultRow {
  const char* name;
  std::string bytes;
  std::string fault;
  std::int32_t stateAfter;
};

void PrintTo(const FaultRow& row, std::ostream* out) {
  *out << row.name << ": " << row.bytes;
}

class FrameFaultTest : public FrameReaderTest, public testing::WithParamInterface<FaultRow> {};

TEST_P(FrameFaultTest, LastByteIsRefusedAndReported) {
  const FaultRow& row = GetParam();
  EXPECT_TRUE(Feed(std::string_view(row.bytes).substr(0, row.bytes.size() - 1)));
  EXPECT_FALSE(m_reader.ProcessByte(row.bytes.back()));
  EXPECT_EQ(Faults(), Texts{row.fault});
  EXPECT_EQ(Bodies(), Texts{});
  EXPECT_EQ(m_reader.GetState(), row.stateAfter);
}

TEST_P(FrameFaultTest, NextConnectionIsServed) {
  Feed(GetParam().bytes);
  m_reader.End();
  m_reader.Begin();
  EXPECT_TRUE(Feed("2#ok"));
  EXPECT_EQ(Bodies(), Texts{"ok"});
}

TEST_P(FrameFaultTest, WithoutSinkNothingIsReported) {
  m_reader.SetErrorSink(nullptr);
  EXPECT_FALSE(Feed(GetParam().bytes));
  EXPECT_EQ(Faults(), Texts{});
}

constexpr char kZeroSize[] = "Vask::JsonSocket::ProcessByteProtocol error. Message size is zero!";
constexpr char kUnexpectedState[] = "Vask::JsonSocket::ProcessByteUnexpected state!";
std::string UnexpectedChar(char byte) {
  return std::string("Vask::JsonSocket::ProcessByteUnexpected char '") + byte + "'";
}

INSTANTIATE_TEST_SUITE_P(
    Faults, FrameFaultTest,
    testing::Values(
        FaultRow{"ZeroSize", "0#", kZeroSize, FrameReader::kReadingSize},
        FaultRow{"NoDigitAtAll", "#", kZeroSize, FrameReader::kReadingSize},
        FaultRow{"ManyZeros", "0000#", kZeroSize, FrameReader::kReadingSize},
        FaultRow{"SizeWrapsToZero", "4294967296#", kZeroSize, FrameReader::kReadingSize},
        FaultRow{"SizeIsNegativeWhenSigned", "2147483648#x", kUnexpectedState,
                 FrameReader::kReadingSize},
        FaultRow{"SizeIsMinusOneWhenSigned", "4294967295#x", kUnexpectedState,
                 FrameReader::kReadingSize},
        FaultRow{"LetterInSize", "12a", UnexpectedChar('a'), FrameReader::kReadingSize},
        FaultRow{"Sign", "-", UnexpectedChar('-'), FrameReader::kReadingSize},
        FaultRow{"Blank", " ", UnexpectedChar(' '), FrameReader::kReadingSize},
        FaultRow{"LineFeed", "7\n", UnexpectedChar('\n'), FrameReader::kReadingSize},
        FaultRow{"ByteAbove0x7F", "\xC3", UnexpectedChar('\xC3'), FrameReader::kReadingSize},
        FaultRow{"JsonWithoutLength", "{", UnexpectedChar('{'), FrameReader::kReadingSize},
        FaultRow{"ByteBelowDigits", "/", UnexpectedChar('/'), FrameReader::kReadingSize},
        FaultRow{"ByteAboveDigits", ":", UnexpectedChar(':'), FrameReader::kReadingSize}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(FrameReaderTest, UnexpectedZeroByteEndsTheReportedText) {
  EXPECT_FALSE(m_reader.ProcessByte('\0'));
  EXPECT_EQ(Faults(), Texts{"Vask::JsonSocket::ProcessByteUnexpected char '"});
}

TEST_F(FrameReaderTest, UnexpectedCharDropsTheLengthSoFar) {
  EXPECT_FALSE(Feed("12a"));
  EXPECT_TRUE(Feed("1#b"));
  EXPECT_EQ(Bodies(), Texts{"b"});
}

TEST_F(FrameReaderTest, ByteWithoutConnectionIsRefused) {
  m_reader.End();
  EXPECT_FALSE(m_reader.ProcessByte('1'));
  EXPECT_EQ(Faults(), Texts{"Vask::JsonSocket::ProcessByteState 0 not recognized!"});
  EXPECT_EQ(m_reader.GetState(), FrameReader::kDisconnected);
}

TEST_F(FrameReaderTest, SizeWrapsAtThirtyTwoBits) {
  EXPECT_TRUE(Feed("4294967299#abc"));
  EXPECT_EQ(Bodies(), Texts{"abc"});
}

TEST_F(FrameReaderTest, LargestSizeIsAccepted) {
  EXPECT_TRUE(Feed("2147483647#abc"));
  EXPECT_EQ(Faults(), Texts{});
  EXPECT_EQ(m_reader.GetState(), FrameReader::kReadingBody);
}

TEST_F(FrameReaderTest, IncompleteMessageIsDroppedWithItsConnection) {
  EXPECT_TRUE(Feed("100#only this much"));
  m_reader.End();
  m_reader.Begin();
  EXPECT_TRUE(Feed("1#a"));
  EXPECT_EQ(Bodies(), Texts{"a"});
  EXPECT_EQ(Faults(), Texts{});
}

TEST_F(FrameReaderTest, IncompleteLengthIsDroppedWithItsConnection) {
  EXPECT_TRUE(Feed("99"));
  m_reader.End();
  m_reader.Begin();
  EXPECT_TRUE(Feed("1#a"));
  EXPECT_EQ(Bodies(), Texts{"a"});
}

TEST_F(FrameReaderTest, ANewConnectionAloneDropsAnIncompleteLength) {
  EXPECT_TRUE(Feed("99"));
  m_reader.Begin();
  EXPECT_TRUE(Feed("1#a"));
  EXPECT_EQ(Bodies(), Texts{"a"});
}

TEST_F(FrameReaderTest, StatesHaveTheirNumbers) {
  EXPECT_EQ(m_reader.GetState(), 1);
  EXPECT_TRUE(Feed("1#"));
  EXPECT_EQ(m_reader.GetState(), 2);
  m_reader.End();
  EXPECT_EQ(m_reader.GetState(), 0);
}

TEST_F(FrameReaderTest, MemoryGrowsWithReceivedBytesNotWithTheAnnouncedLength) {
  EXPECT_TRUE(Feed("2147483647#"));
  EXPECT_TRUE(Feed(std::string(1000, 'x')));
  EXPECT_LE(m_reader.BodyCapacity(), 4096u);
}

// 64 KiB
TEST_F(FrameReaderTest, MemoryOfAHugeMessageIsFreed) {
  EXPECT_EQ(FrameReader::kKeptBodyBytes, 65'536u);
  std::string frame;
  AppendFrame(frame, std::string(4 * FrameReader::kKeptBodyBytes, 'x'));
  EXPECT_TRUE(Feed(frame));
  EXPECT_EQ(Bodies().size(), 1u);
  EXPECT_LE(m_reader.BodyCapacity(), FrameReader::kKeptBodyBytes);
}

TEST_F(FrameReaderTest, MemoryOfAHugeIncompleteMessageIsFreed) {
  EXPECT_TRUE(Feed("2147483647#" + std::string(4 * FrameReader::kKeptBodyBytes, 'x')));
  m_reader.End();
  EXPECT_LE(m_reader.BodyCapacity(), FrameReader::kKeptBodyBytes);
}

TEST_F(FrameReaderTest, MemoryOfAnOrdinaryMessageIsKept) {
  EXPECT_TRUE(Feed("1000#" + std::string(1000, 'x')));
  EXPECT_GE(m_reader.BodyCapacity(), 1000u);
}

TEST_F(FrameReaderTest, FramesOfTheUsualSizeAllocateNothingAfterTheFirst) {
  class Counting final : public IOnJsonMessageText {
   public:
    bool OnJsonMessageText(const char*) override { return ++count > 0; }
    int count = 0;
  } counting;
  m_reader.SetListener(&counting);
  std::string frame;
  AppendFrame(frame, std::string(1000, 'x'));
  EXPECT_TRUE(Feed(frame));
  const std::uint64_t before = Allocations();
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(Feed(frame));
  EXPECT_EQ(Allocations() - before, 0u);
  EXPECT_EQ(counting.count, 101);
}

}  // namespace
}  // namespace Vask::Tests
