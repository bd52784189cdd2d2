#include "tests/rehearsal/win32/ZipFile.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

namespace Rehearsal {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kLocalHead = 0x04034B50;
constexpr std::uint32_t kCentralHead = 0x02014B50;
constexpr std::uint32_t kEndOfCentral = 0x06054B50;
constexpr std::uint16_t kVersion = 20;
constexpr std::uint16_t kNamesAreUtf8 = 1U << 11U;
constexpr std::uint16_t kFirstDay = 1U << 5U | 1U;  // 1 January 1980: the logs have their own times

// Appends a number of Bytes bytes, the lowest first.
template <int Bytes>
void Append(std::string& text, std::uint64_t number) {
  for (int i = 0; i < Bytes; ++i) text += static_cast<char>(number >> 8 * i & 0xFF);
}

std::uint32_t Crc32(const std::string& bytes) {
  std::uint32_t crc = ~0U;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

// The fields that both heads of a file have.
std::string CommonFields(const std::string& name, const std::string& bytes) {
  std::string fields;
  Append<2>(fields, kVersion);
  Append<2>(fields, kNamesAreUtf8);
  Append<2>(fields, 0);  // not compressed
  Append<2>(fields, 0);  // midnight
  Append<2>(fields, kFirstDay);
  Append<4>(fields, Crc32(bytes));
  Append<4>(fields, bytes.size());
  Append<4>(fields, bytes.size());
  Append<2>(fields, name.size());
  Append<2>(fields, 0);  // no extra field
  return fields;
}

class Zip {
 public:
  explicit Zip(const fs::path& path) : m_file(path, std::ios::binary | std::ios::trunc) {}

  void Add(const std::string& name, const std::string& bytes) {
    const std::string fields = CommonFields(name, bytes);
    Append<4>(m_central, kCentralHead);
    Append<2>(m_central, kVersion);
    m_central += fields;
    Append<8>(m_central, 0);  // no comment, first disk, no attributes of the file
    Append<2>(m_central, 0);
    Append<4>(m_central, m_length);
    m_central += name;
    std::string head;
    Append<4>(head, kLocalHead);
    Write(head + fields + name + bytes);
    ++m_files;
  }

  [[nodiscard]] bool Close() {
    std::string end;
    Append<4>(end, kEndOfCentral);
    Append<4>(end, 0);  // one disk
    Append<2>(end, m_files);
    Append<2>(end, m_files);
    Append<4>(end, m_central.size());
    Append<4>(end, m_length);
    Append<2>(end, 0);  // no comment
    Write(m_central + end);
    m_file.close();
    return !m_file.fail();
  }

 private:
  void Write(const std::string& bytes) {
    m_file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    m_length += bytes.size();
  }

  std::ofstream m_file;
  std::string m_central;
  std::uint64_t m_length = 0;
  std::uint64_t m_files = 0;
};

}  // namespace

bool WriteZip(const fs::path& folder, const fs::path& zip) {
  Zip archive(zip);
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    if (!file) return false;
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::u8string name = entry.path().lexically_relative(folder).generic_u8string();
    archive.Add({name.begin(), name.end()}, bytes);
  }
  return archive.Close();
}

}  // namespace Rehearsal
