#include "json/KeyFolding.h"

namespace Vask {

namespace {
constexpr unsigned kCaseBit = 'a' ^ 'A';
}  // namespace

constinit const KeyFolding KeyFolding::kNone{1, 0, 0};
constinit const KeyFolding KeyFolding::kToLower{'A', 'Z', kCaseBit};
constinit const KeyFolding KeyFolding::kToUpper{'a', 'z', kCaseBit};

}  // namespace Vask
