#include "messages/Catalogue.h"

#include <algorithm>

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

}  // namespace

std::size_t FindInCatalogue(std::string_view name) noexcept {
  std::size_t i = 0;
  while (i < kCatalogueSize && !SameName(kCatalogue[i].name, name)) ++i;
  return i;
}

}  // namespace Messages
