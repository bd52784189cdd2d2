#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "messages/SNMPmessage.h"

namespace Messages::Benchmarks {

// The same strict decoding of an SNMPmessage frame with other JSON libraries:
// parse, check the envelope, match the name in the catalogue, find each member
// whatever its letter case, check kinds, lengths and ranges, fill the record,
// release. False at the first fault.
bool DecodeWithNlohmann(const char* text, SNMPmessage& message, std::int32_t& id);
bool DecodeWithRapidJson(const char* text, SNMPmessage& message, std::int32_t& id);

// True when both are the same but for the case of ASCII letters.
inline bool SameKey(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

inline bool CopyText(std::string_view text, char* destination, std::size_t maximum) {
  if (text.size() > maximum) return false;
  std::memcpy(destination, text.data(), text.size());
  destination[text.size()] = '\0';
  return true;
}

}  // namespace Messages::Benchmarks
