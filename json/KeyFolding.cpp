#include "json/KeyFolding.h"

namespace Vask {

constinit const KeyFolding KeyFolding::s_kept{Letters::Kept};
constinit const KeyFolding KeyFolding::s_toLower{Letters::ToLower};
constinit const KeyFolding KeyFolding::s_toUpper{Letters::ToUpper};

}  // namespace Vask
