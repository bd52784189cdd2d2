#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "json/Ascii.h"
#include "messages/SNMPmessage.h"

namespace Messages::Benchmarks {

// These decode an SNMPmessage frame as strictly as the agent, with other JSON libraries:
// parse, check the envelope, match the name in the catalogue, find each member in any
// letter case, check kinds, lengths and ranges, fill the record, release. They return
// false at the first fault.
bool DecodeWithNlohmann(const char* text, SNMPmessage& message, std::int32_t& id);
bool DecodeWithRapidJson(const char* text, SNMPmessage& message, std::int32_t& id);

inline bool CopyText(std::string_view text, char* destination, std::size_t maximum) {
  if (text.size() > maximum) return false;
  std::memcpy(destination, text.data(), text.size());
  destination[text.size()] = '\0';
  return true;
}

}  // namespace Messages::Benchmarks
