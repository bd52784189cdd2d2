#include "json/KeyFolding.h"

namespace Vask {

namespace {
constinit const KeyFolding kKept{KeyFolding::Letters::Kept};
constinit const KeyFolding kToLower{KeyFolding::Letters::ToLower};
constinit const KeyFolding kToUpper{KeyFolding::Letters::ToUpper};
}  // namespace

const KeyFolding& KeyFolding::For(bool caseSensitive, bool foldToUpper) noexcept {
  return caseSensitive ? kKept : foldToUpper ? kToUpper : kToLower;
}

}  // namespace Vask
