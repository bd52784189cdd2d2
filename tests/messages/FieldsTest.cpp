#include "messages/Fields.h"

#include <gtest/gtest.h>

#include "messages/Codec.h"
#include "tests/messages/ProgramRecords.h"

namespace Messages::Tests {
namespace {

// These are checks that keep a wrong description from compiling; the functions
// that make them are tried on both kinds of input.

constexpr Alternative kDistinct[] = {FieldLess("One"), FieldLess("Two"), FieldLess("OneTwo")};
constexpr Alternative kTwice[] = {FieldLess("One"), FieldLess("Two"), FieldLess("One")};
constexpr Alternative kTwiceFolded[] = {FieldLess("one"), FieldLess("ONE")};

TEST(FieldsTest, DuplicateNamesAreSeenWhateverTheirCase) {
  static_assert(!HasDuplicateNames(kDistinct));
  static_assert(HasDuplicateNames(kTwice));
  static_assert(HasDuplicateNames(kTwiceFolded));
  EXPECT_FALSE(HasDuplicateNames(kDistinct));
  EXPECT_TRUE(HasDuplicateNames(kTwice));
}

TEST(FieldsTest, UnionsKeyIsTheLastPartOfItsPath) {
  EXPECT_STREQ("trapType", LastPart("SNMPtrap::trapType"));
  EXPECT_STREQ("instance", LastPart("CreateProgramMP3::streams::Stream::instance"));
  EXPECT_STREQ("alone", LastPart("alone"));
}

TEST(FieldsTest, RecordsWithListsOrRealsAreNotEncodable) {
  EXPECT_TRUE(EncodableRecord(kRecordTable<ProgramSummary>));
  EXPECT_FALSE(EncodableRecord(kRecordTable<CreateProgramMP3>));
  EXPECT_FALSE(EncodableRecord(kRecordTable<ProgramStream::AAC>));
}

TEST(FieldsTest, CapacityLeavesRoomForTheTerminatingZero) {
  EXPECT_EQ(8u, kRecordTable<ProgramStream>.fields[0].capacity);
  EXPECT_EQ(sizeof(ProgramStream::m_name), kRecordTable<ProgramStream>.fields[0].capacity + 1);
}

}  // namespace
}  // namespace Messages::Tests
