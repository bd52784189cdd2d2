#include "check/Image.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace Check {
namespace {

constexpr std::uint32_t kMostNames = 4096;
constexpr std::size_t kLongestName = 512;
constexpr std::uint16_t kDllCharacteristic = 0x2000;
constexpr std::uint32_t kVersionResource = 16;
constexpr std::uint32_t kFixedFileInfoSignature = 0xFEEF04BD;

// Reads little-endian numbers at any offset. A read outside of the bytes returns zero and sets a
// flag.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : m_bytes(bytes) {}

  std::uint16_t Word(std::uint64_t offset) { return static_cast<std::uint16_t>(Number(offset, 2)); }
  std::uint32_t Long(std::uint64_t offset) { return Number(offset, 4); }

  // A text that ends with a zero byte.
  std::string Text(std::uint64_t offset) {
    if (offset >= m_bytes.size()) {
      m_missed = true;
      return {};
    }
    const std::string_view rest = m_bytes.substr(offset, kLongestName);
    return std::string(rest.substr(0, rest.find('\0')));
  }

  [[nodiscard]] std::uint64_t Size() const { return m_bytes.size(); }
  [[nodiscard]] bool Missed() const { return m_missed; }

 private:
  std::uint32_t Number(std::uint64_t offset, unsigned size) {
    if (offset > m_bytes.size() || m_bytes.size() - offset < size) {
      m_missed = true;
      return 0;
    }
    std::uint32_t number = 0;
    for (unsigned i = size; i-- > 0;) {
      number = number << 8 | static_cast<unsigned char>(m_bytes[offset + i]);
    }
    return number;
  }

  std::string_view m_bytes;
  bool m_missed = false;
};

class ImageReader {
 public:
  explicit ImageReader(std::string_view bytes) : m_bytes(bytes) {}

  Image Read() {
    Image image;
    if (!FindHeaders()) {
      image.kind = Image::Kind::kNotAnImage;
      return image;
    }
    image.machine = m_bytes.Word(m_header + 4);
    image.isDll = (m_bytes.Word(m_header + 22) & kDllCharacteristic) != 0;
    ReadSections();
    ReadExports(image);
    ReadImports(image);
    ReadVersion(image);
    image.kind = m_cut || m_bytes.Missed() ? Image::Kind::kTruncated : Image::Kind::kImage;
    return image;
  }

 private:
  struct Section {
    std::uint32_t address;
    std::uint32_t size;
    std::uint32_t offset;
  };
  enum Directory : unsigned { kExports = 0, kImports = 1, kResources = 2 };

  static constexpr std::uint16_t kMostSections = 96;  // the loader's own limit

  bool FindHeaders() {
    Bytes probe = m_bytes;
    if (probe.Word(0) != 0x5A4D) return false;  // "MZ"
    m_header = probe.Long(0x3C);
    if (probe.Long(m_header) != 0x00004550) return false;  // "PE"
    const std::uint16_t kind = probe.Word(m_header + 24);
    m_is64 = kind == 0x20B;
    return (m_is64 || kind == 0x10B) && !probe.Missed();
  }

  void ReadSections() {
    const std::uint16_t count = std::min(m_bytes.Word(m_header + 6), kMostSections);
    const std::uint64_t first = m_header + 24u + m_bytes.Word(m_header + 20);
    for (std::uint16_t i = 0; i < count; ++i) {
      const std::uint64_t at = first + std::uint64_t{40} * i;
      const Section section{m_bytes.Long(at + 12), m_bytes.Long(at + 16), m_bytes.Long(at + 20)};
      m_sections.push_back(section);
      // A file that was copied in part has all headers, but not the bytes of the last section.
      if (std::uint64_t{section.offset} + section.size > m_bytes.Size()) m_cut = true;
    }
  }

  // Returns the offset in the file of a virtual address; empty if no section has it.
  [[nodiscard]] std::optional<std::uint64_t> OffsetOf(std::uint32_t address) const {
    for (const Section& section : m_sections) {
      if (address >= section.address && address - section.address < section.size) {
        return std::uint64_t{section.offset} + (address - section.address);
      }
    }
    return {};
  }

  std::optional<std::uint64_t> OffsetOf(Directory directory) {
    const std::uint64_t count = m_header + 24u + (m_is64 ? 108u : 92u);
    if (m_bytes.Long(count) <= directory) return {};
    const std::uint32_t address = m_bytes.Long(count + 4 + std::uint64_t{8} * directory);
    return address == 0 ? std::nullopt : OffsetOf(address);
  }

  void ReadExports(Image& image) {
    const auto table = OffsetOf(kExports);
    if (!table) return;
    const std::uint32_t count = std::min(m_bytes.Long(*table + 24), kMostNames);
    const auto names = OffsetOf(m_bytes.Long(*table + 32));
    for (std::uint32_t i = 0; names && i < count && !m_bytes.Missed(); ++i) {
      const auto name = OffsetOf(m_bytes.Long(*names + std::uint64_t{4} * i));
      if (name) image.exports.push_back(m_bytes.Text(*name));
    }
  }

  void ReadImports(Image& image) {
    const auto table = OffsetOf(kImports);
    for (std::uint32_t i = 0; table && i < kMostNames && !m_bytes.Missed(); ++i) {
      const std::uint32_t address = m_bytes.Long(*table + std::uint64_t{20} * i + 12);
      if (address == 0) return;
      const auto name = OffsetOf(address);
      if (name) image.imports.push_back(m_bytes.Text(*name));
    }
  }

  // Returns the entry of one level of the tree of resources: the one with `id`, or the first one.
  std::optional<std::uint32_t> ResourceEntry(std::uint64_t folder,
                                             std::optional<std::uint32_t> id) {
    const std::uint32_t count =
        std::min<std::uint32_t>(m_bytes.Word(folder + 12) + m_bytes.Word(folder + 14), kMostNames);
    for (std::uint32_t i = 0; i < count && !m_bytes.Missed(); ++i) {
      const std::uint64_t entry = folder + 16 + std::uint64_t{8} * i;
      if (!id || m_bytes.Long(entry) == *id) return m_bytes.Long(entry + 4);
    }
    return {};
  }

  void ReadVersion(Image& image) {
    constexpr std::uint32_t kFolder = 0x80000000;
    const auto root = OffsetOf(kResources);
    if (!root) return;
    auto entry = ResourceEntry(*root, kVersionResource);
    if (entry && (*entry & kFolder) != 0) entry = ResourceEntry(*root + (*entry & ~kFolder), {});
    if (entry && (*entry & kFolder) != 0) entry = ResourceEntry(*root + (*entry & ~kFolder), {});
    if (!entry || (*entry & kFolder) != 0) return;
    const auto data = OffsetOf(m_bytes.Long(*root + *entry));
    // A header of three words, the key "VS_VERSION_INFO" with its zero, and two bytes of padding.
    if (data && m_bytes.Long(*data + 40) == kFixedFileInfoSignature) {
      const std::uint32_t high = m_bytes.Long(*data + 48);
      const std::uint32_t low = m_bytes.Long(*data + 52);
      image.version = std::to_string(high >> 16) + '.' + std::to_string(high & 0xFFFF) + '.' +
                      std::to_string(low >> 16) + '.' + std::to_string(low & 0xFFFF);
    }
  }

  Bytes m_bytes;
  std::uint32_t m_header = 0;
  bool m_is64 = false;
  bool m_cut = false;
  std::vector<Section> m_sections;
};

}  // namespace

bool Image::Exports(std::string_view name) const {
  return std::find(exports.begin(), exports.end(), name) != exports.end();
}

Image ReadImage(std::string_view bytes) {
  return ImageReader(bytes).Read();
}

}  // namespace Check
