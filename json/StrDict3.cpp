#include "json/StrDict3.h"

#include <cstdio>
#include <cstdlib>

namespace Vask {

void EndProcessOnLongKey() noexcept {
  static_cast<void>(std::fputs(
      "Vask::StrDict3: a key of more than 128 characters cannot be enumerated\n", stderr));
  static_cast<void>(std::fflush(stderr));
  std::abort();
}

}  // namespace Vask
