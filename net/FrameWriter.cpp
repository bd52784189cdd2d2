#include "net/FrameWriter.h"

#include <cstdio>

namespace Vask {

void AppendFrame(std::string& out, std::string_view body) {
  char prefix[16];  // ten digits, '#' and the end
  (void)std::snprintf(prefix, sizeof prefix, "%u#", static_cast<unsigned>(body.size()));
  out += prefix;
  out += body;
}

}  // namespace Vask
