#include "json/RefCount3.h"

namespace Vask {

void RefCount3::OnLastRelease() noexcept {}

}  // namespace Vask
