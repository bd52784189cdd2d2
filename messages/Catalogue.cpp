#include "messages/Catalogue.h"

#include <cstdint>
#include <cstring>
#include <iterator>

#include "messages/Fields.h"

namespace Messages {

namespace {

constexpr bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

constexpr bool HasDuplicates() {
  for (std::size_t i = 0; i < kCatalogueSize; ++i) {
    for (std::size_t j = i + 1; j < kCatalogueSize; ++j) {
      if (SameName(kCatalogue[i].name, kCatalogue[j].name)) return true;
    }
  }
  return false;
}
static_assert(!HasDuplicates(), "two messages of one name");

constexpr std::uint8_t kLengths[] = {
#define MESSAGES_LENGTH(name, body, role) sizeof(#name) - 1,
    MESSAGES_CATALOGUE(MESSAGES_LENGTH)
#undef MESSAGES_LENGTH
};

}  // namespace

// Entry after entry, in order, and of each the length before the text: nearly
// every message passes over most of the catalogue, and memchr does that for many
// lengths at a time.
std::size_t FindInCatalogue(std::string_view name) noexcept {
  const std::uint8_t* const end = std::end(kLengths);
  const auto length = static_cast<std::uint8_t>(name.size());  // SameName compares it whole
  for (const std::uint8_t* next = kLengths; next != end; ++next) {
    const auto left = static_cast<std::size_t>(end - next);
    next = static_cast<const std::uint8_t*>(std::memchr(next, length, left));
    if (next == nullptr) return kCatalogueSize;
    const auto i = static_cast<std::size_t>(next - kLengths);
    if (SameName(kCatalogue[i].name, name)) return i;
  }
  return kCatalogueSize;
}

}  // namespace Messages
