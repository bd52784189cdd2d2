#include "json/RefCount3.h"

namespace Vask {

RefCount3::~RefCount3() = default;

void RefCount3::OnLastRelease() noexcept {}

}  // namespace Vask
