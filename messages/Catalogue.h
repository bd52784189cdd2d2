#pragma once

#include <cstddef>
#include <string_view>

#include "messages/CatalogueEntries.h"

namespace Vask {
class JsonObject;
}

namespace Messages {

// The record types of all messages and the catalogue as a constant table.
// Records with fields are only declared here: include the header of their name
// to build one. Those without are defined, each with a decoder that accepts any
// object. Any thread.

#define MESSAGES_DECLARE_RECORD(name) struct name;
#define MESSAGES_DECLARE_FIELDLESS(name)                            \
  struct name {};                                                   \
  inline bool DecodeStruct_##name(const Vask::JsonObject&, name&) { \
    return true;                                                    \
  }
#define MESSAGES_DECLARE(name, body, role) MESSAGES_DECLARE_##body(name)
MESSAGES_CATALOGUE(MESSAGES_DECLARE)
#undef MESSAGES_DECLARE
#undef MESSAGES_DECLARE_FIELDLESS
#undef MESSAGES_DECLARE_RECORD

enum class MessageBody { RECORD, FIELDLESS };
enum class MessageRole { MESSAGE, ANSWER };

struct CatalogueEntry {
  std::string_view name;
  MessageBody body;
  MessageRole role;
};

inline constexpr CatalogueEntry kCatalogue[] = {
#define MESSAGES_ENTRY(name, body, role) {#name, MessageBody::body, MessageRole::role},
    MESSAGES_CATALOGUE(MESSAGES_ENTRY)
#undef MESSAGES_ENTRY
};

inline constexpr std::size_t kCatalogueSize = std::size(kCatalogue);

namespace Internal {
enum class Position : std::size_t {
#define MESSAGES_POSITION(name, body, role) name,
  MESSAGES_CATALOGUE(MESSAGES_POSITION)
#undef MESSAGES_POSITION
};
}  // namespace Internal

// The place of message type M in the catalogue, from 0 on. There is none for
// anything else.
template <class M>
inline constexpr std::size_t kCatalogueIndex = [] {
  static_assert(sizeof(M) == 0, "not a message of the catalogue");
  return kCatalogueSize;
}();
#define MESSAGES_INDEX(name, body, role) \
  template <>                            \
  inline constexpr std::size_t kCatalogueIndex<name> = std::size_t(Internal::Position::name);
MESSAGES_CATALOGUE(MESSAGES_INDEX)
#undef MESSAGES_INDEX

// The place of the first entry with this name, compared whole and without regard
// to the case of ASCII letters, one entry after another; kCatalogueSize if there
// is none. Allocates nothing.
std::size_t FindInCatalogue(std::string_view name) noexcept;

}  // namespace Messages
