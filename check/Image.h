#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Check {

// Facts from the headers of a Windows image.
struct Image {
  enum class Kind {
    kUnread,
    kNotAnImage,
    kTruncated,  // the headers name bytes that the file does not have
    kImage,
  };
  Kind kind = Kind::kUnread;
  std::uint16_t machine = 0;
  bool isDll = false;
  std::vector<std::string> exports;
  std::vector<std::string> imports;  // names of libraries
  std::string version;               // "0.1.0.0"; empty if it has no version resource

  [[nodiscard]] bool Exports(std::string_view name) const;
};

inline constexpr std::uint16_t kMachineX64 = 0x8664;
inline constexpr std::uint16_t kMachineX86 = 0x014C;
inline constexpr std::uint16_t kMachineArm64 = 0xAA64;

// Reads the headers of a file as data, and loads or runs nothing. Any bytes are safe. Reads at
// most 4,096 names of a list.
[[nodiscard]] Image ReadImage(std::string_view bytes);

}  // namespace Check
