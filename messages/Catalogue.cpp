#include "messages/Catalogue.h"

#include <algorithm>
#include <cstdint>

#include "messages/Fields.h"

namespace Messages {

namespace {

constexpr bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return FoldAscii(x) == FoldAscii(y);
         });
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

// One comparison after the other, the length before the text: nearly every
// message ends here, and most of the catalogue is passed over by its lengths.
std::size_t FindInCatalogue(std::string_view name) noexcept {
  for (std::size_t i = 0; i < kCatalogueSize; ++i) {
    if (kLengths[i] == name.size() && SameName(kCatalogue[i].name, name)) return i;
  }
  return kCatalogueSize;
}

}  // namespace Messages
