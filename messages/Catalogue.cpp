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

// A byte that two different names seldom share and two spellings of one name always
// do.
constexpr std::uint8_t Mark(std::string_view name) {
  const auto first = static_cast<unsigned char>(FoldAscii(name.front()));
  const auto last = static_cast<unsigned char>(FoldAscii(name.back()));
  return static_cast<std::uint8_t>(name.size() * 26 + first * 6 + last);
}

constexpr std::uint8_t kMarks[] = {
#define MESSAGES_MARK(name, body, role) Mark(#name),
    MESSAGES_CATALOGUE(MESSAGES_MARK)
#undef MESSAGES_MARK
};

}  // namespace

// Entry after entry, in order, and of each the mark before the text: nearly every
// message passes over most of the catalogue, and memchr does that for many marks
// at a time.
std::size_t FindInCatalogue(std::string_view name) noexcept {
  if (name.empty()) return kCatalogueSize;
  const std::uint8_t* const end = std::end(kMarks);
  const std::uint8_t mark = Mark(name);
  for (const std::uint8_t* next = kMarks; next != end; ++next) {
    const auto left = static_cast<std::size_t>(end - next);
    next = static_cast<const std::uint8_t*>(std::memchr(next, mark, left));
    if (next == nullptr) return kCatalogueSize;
    const auto i = static_cast<std::size_t>(next - kMarks);
    // As it is coded, from nearly everybody.
    if (kCatalogue[i].name == name || SameName(kCatalogue[i].name, name)) return i;
  }
  return kCatalogueSize;
}

}  // namespace Messages
