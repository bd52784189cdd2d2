#include "check/Image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace Check {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A small image: one section at address 0x1000 that the file holds at 0x400.
class SmallImage {
 public:
  static constexpr std::size_t kHeader = 0x80;
  static constexpr std::size_t kData = 0x400;
  static constexpr std::uint32_t kAddress = 0x1000;

  SmallImage() : m_bytes(0x800, '\0') {
    Text(0, "MZ");
    Long(0x3C, kHeader);
    Text(kHeader, "PE");
    Word(kHeader + 4, 0x8664);
    Word(kHeader + 6, 1);        // sections
    Word(kHeader + 20, 0xF0);    // size of the optional header
    Word(kHeader + 22, 0x2022);  // characteristics, with that of a DLL
    Word(kHeader + 24, 0x20B);   // 64-bit
    Long(kHeader + 24 + 108, 16);
    const std::size_t section = kHeader + 24 + 0xF0;
    Long(section + 12, kAddress);
    Long(section + 16, 0x400);
    Long(section + 20, kData);
    Exports();
    Imports();
    Version();
  }

  void Word(std::size_t at, unsigned number) {
    m_bytes[at] = static_cast<char>(number & 0xFF);
    m_bytes[at + 1] = static_cast<char>(number >> 8 & 0xFF);
  }
  void Long(std::size_t at, unsigned number) {
    Word(at, number & 0xFFFF);
    Word(at + 2, number >> 16);
  }
  void Text(std::size_t at, const std::string& text) { m_bytes.replace(at, text.size(), text); }
  void Directory(unsigned index, std::uint32_t address) {
    Long(kHeader + 24 + 112 + 8 * index, address);
  }
  [[nodiscard]] const std::string& Bytes() const { return m_bytes; }

 private:
  void Exports() {
    Directory(0, kAddress);
    Long(kData + 24, 2);
    Long(kData + 32, kAddress + 0x40);
    Long(kData + 0x40, kAddress + 0x50);
    Long(kData + 0x44, kAddress + 0x60);
    Text(kData + 0x50, "First");
    Text(kData + 0x60, "Second");
  }
  void Imports() {
    Directory(1, kAddress + 0x80);
    Long(kData + 0x80 + 12, kAddress + 0xC0);
    Text(kData + 0xC0, "snmpapi.dll");
  }
  // Three levels of folders, the entry's address, and the version's block.
  void Version() {
    const std::size_t root = kData + 0x100;
    Directory(2, kAddress + 0x100);
    Word(root + 14, 1);
    Long(root + 16, 16);
    Long(root + 20, 0x80000020);
    Word(root + 0x20 + 14, 1);
    Long(root + 0x20 + 20, 0x80000040);
    Word(root + 0x40 + 14, 1);
    Long(root + 0x40 + 20, 0x60);
    Long(root + 0x60, kAddress + 0x200);
    Long(kData + 0x200 + 40, 0xFEEF04BD);
    Long(kData + 0x200 + 48, 0x00010002);
    Long(kData + 0x200 + 52, 0x00030004);
  }

  std::string m_bytes;
};

TEST(CheckImage, WholeImageIsRead) {
  const Image image = ReadImage(SmallImage().Bytes());
  EXPECT_EQ(image.kind, Image::Kind::kImage);
  EXPECT_EQ(image.machine, kMachineX64);
  EXPECT_TRUE(image.isDll);
  EXPECT_THAT(image.exports, ElementsAre("First", "Second"));
  EXPECT_THAT(image.imports, ElementsAre("snmpapi.dll"));
  EXPECT_EQ(image.version, "1.2.3.4");
  EXPECT_TRUE(image.Exports("Second"));
  EXPECT_FALSE(image.Exports("Third"));
}

TEST(CheckImage, OtherFilesAreNotImages) {
  for (const char* text : {"", "M", "MZ", "#!/bin/sh", "PE"}) {
    EXPECT_EQ(ReadImage(text).kind, Image::Kind::kNotAnImage) << text;
  }
  SmallImage image;
  image.Long(0x3C, 0xFFFFFFF0);
  EXPECT_EQ(ReadImage(image.Bytes()).kind, Image::Kind::kNotAnImage);
}

TEST(CheckImage, EveryCutImageIsRecognised) {
  const std::string whole = SmallImage().Bytes();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(ReadImage(std::string_view(whole).substr(0, length)).kind, Image::Kind::kImage)
        << length;
  }
}

TEST(CheckImage, ImageWithoutTablesHasNothing) {
  SmallImage image;
  for (unsigned i = 0; i < 3; ++i) image.Directory(i, 0);
  const Image read = ReadImage(image.Bytes());
  EXPECT_EQ(read.kind, Image::Kind::kImage);
  EXPECT_THAT(read.exports, IsEmpty());
  EXPECT_THAT(read.imports, IsEmpty());
  EXPECT_EQ(read.version, "");
}

TEST(CheckImage, CountsThatAreTooLargeEnd) {
  SmallImage image;
  image.Long(SmallImage::kData + 24, 0xFFFFFFFF);
  EXPECT_LE(ReadImage(image.Bytes()).exports.size(), 4096u);
  image.Word(SmallImage::kData + 0x100 + 14, 0xFFFF);
  image.Long(SmallImage::kData + 0x100 + 16, 15);
  EXPECT_EQ(ReadImage(image.Bytes()).version, "");
}

TEST(CheckImage, ThirtyTwoBitImageIsRead) {
  SmallImage image;
  image.Word(SmallImage::kHeader + 4, 0x14C);
  image.Word(SmallImage::kHeader + 24, 0x10B);
  EXPECT_EQ(ReadImage(image.Bytes()).machine, kMachineX86);
}

}  // namespace
}  // namespace Check
