#include "messages/Catalogue.h"

#include "messages/Fields.h"

namespace Messages {

namespace {

// Not inlined, so that the sequence below holds little more than one comparison of
// lengths for each entry.
[[gnu::noinline]] constexpr bool SameLetters(const char* a, const char* b, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i) {
    if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

constexpr bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && SameLetters(a.data(), b.data(), b.size());
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
#define MESSAGES_MATCH(message, body, role) \
  if (SameName(name, kCatalogue[kCatalogueIndex<message>].name)) return kCatalogueIndex<message>;
  MESSAGES_CATALOGUE(MESSAGES_MATCH)
#undef MESSAGES_MATCH
  return kCatalogueSize;
}

}  // namespace Messages
