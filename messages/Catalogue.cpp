#include "messages/Catalogue.h"

#include "messages/Fields.h"

namespace Messages {

static_assert(!HasDuplicateNames(kCatalogue), "two messages of one name");

std::size_t FindInCatalogue(std::string_view name) noexcept {
#define MESSAGES_MATCH(message, body, role) \
  if (SameName(name, kCatalogue[kCatalogueIndex<message>].name)) return kCatalogueIndex<message>;
  MESSAGES_CATALOGUE(MESSAGES_MATCH)
#undef MESSAGES_MATCH
  return kCatalogueSize;
}

}  // namespace Messages
