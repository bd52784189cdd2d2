#pragma once

#include <string>

namespace Mibs {

// The text of the management module, made from the agent's tables and the
// enterprise number of the build. Any thread.

// SMIv2 (RFC 2578), which every current manager loads.
[[nodiscard]] std::string SmiV2Module();

// SMIv1 with TRAP-TYPE (RFC 1212, RFC 1215), for managers that cannot import
// SMIv2. Both modules define the same names: never put them in one folder.
[[nodiscard]] std::string SmiV1Module();

}  // namespace Mibs
