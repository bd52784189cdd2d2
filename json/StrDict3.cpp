#include "json/StrDict3.h"

#include <cstdio>
#include <cstdlib>

namespace Vask {

void EndProcessOnLongKey() noexcept {
  std::fputs("Vask::StrDict3: a key of more than 128 characters cannot be enumerated\n", stderr);
  std::fflush(stderr);
  std::abort();
}

}  // namespace Vask
