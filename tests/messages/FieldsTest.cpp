#include "messages/Fields.h"

#include <gtest/gtest.h>

#include "messages/Codec.h"
#include "tests/messages/ProgramRecords.h"

namespace Messages::Tests {
namespace {

// Static assertions keep a wrong description from compiling. These tests call the
// functions of those assertions with right and wrong input.

constexpr Alternative kDistinct[] = {{0, "One"}, {1, "Two"}, {2, "OneTwo"}};
constexpr Alternative kTwice[] = {{0, "One"}, {1, "Two"}, {2, "One"}};
constexpr Alternative kTwiceFolded[] = {{0, "one"}, {1, "ONE"}};
constexpr Alternative kSwapped[] = {{0, "One"}, {2, "OneTwo"}, {1, "Two"}};

TEST(FieldsTest, DuplicateNamesAreFoundWhateverTheirCase) {
  EXPECT_FALSE(HasDuplicateNames(kDistinct));
  EXPECT_TRUE(HasDuplicateNames(kTwice));
  EXPECT_TRUE(HasDuplicateNames(kTwiceFolded));
}

TEST(FieldsTest, AlternativesAreAtThePlacesOfTheirTags) {
  EXPECT_TRUE(AreInOrderOfTags(kDistinct));
  EXPECT_FALSE(AreInOrderOfTags(kSwapped));
}

TEST(FieldsTest, OneWordGivesTagMemberAndNameOfAnAlternative) {
  constexpr Alternative row = MESSAGES_ALTERNATIVE(ProgramStream::instance, AAC);
  EXPECT_EQ(1u, row.tag);
  EXPECT_STREQ("AAC", row.name.Text());
  EXPECT_EQ(&kRecordTable<ProgramStream::AAC>, row.record);
  ProgramStream::instance choice;
  EXPECT_EQ(&choice.m_AAC, row.member(&choice));

  constexpr Alternative empty = MESSAGES_EMPTY_ALTERNATIVE(ProgramStream::AAC::options, Quality);
  EXPECT_EQ(1u, empty.tag);
  EXPECT_STREQ("Quality", empty.name.Text());
  EXPECT_EQ(nullptr, empty.record);
}

TEST(FieldsTest, OnlyRecordsWithARangeHaveADecodersName) {
  EXPECT_TRUE(HasRanges(Description<ProgramStream::MP3>::kRows));
  EXPECT_STREQ("DecodeStruct_MP3", kRecordTable<ProgramStream::MP3>.decoder);
  EXPECT_TRUE(HasRanges(Description<Program>::kRows));  // a lower bound only
  EXPECT_FALSE(HasRanges(Description<ProgramStream>::kRows));
  EXPECT_EQ(nullptr, kRecordTable<ProgramStream>.decoder);
}

TEST(FieldsTest, UnionsKeyIsTheLastPartOfItsPath) {
  EXPECT_STREQ("trapType", LastPart("SNMPtrap::trapType"));
  EXPECT_STREQ("instance", LastPart("CreateProgramMP3::streams::Stream::instance"));
  EXPECT_STREQ("alone", LastPart("alone"));
  EXPECT_STREQ("one:point", LastPart("one:point"));
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
