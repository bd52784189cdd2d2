#pragma once

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>

#include "tests/support/FaultySockets.h"

namespace Vask::Tests {

// One text for an address class: what it means, and what had to be looked up.
struct AddressRow {
  const char* name;
  std::string text;
  std::string address;   // empty: refused
  std::string lookedUp;  // empty: nothing
};

inline void PrintTo(const AddressRow& row, std::ostream* out) {
  *out << row.name << ": \"" << row.text << '"';
}

inline std::string RowName(const AddressRow& row) {
  return row.name;
}

inline std::uint32_t NetworkOrder(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
  const std::uint8_t parts[] = {a, b, c, d};
  std::uint32_t address = 0;
  std::memcpy(&address, parts, sizeof address);
  return address;
}

// Where the rows' names lead.
inline void FillNames(FaultySockets& sockets) {
  sockets.names["corvane"] = NetworkOrder(192, 0, 2, 1);
  sockets.names["machine"] = NetworkOrder(192, 0, 2, 2);
  sockets.names["0.0.0.0"] = NetworkOrder(192, 0, 2, 3);
  sockets.names["10.0.0.256"] = NetworkOrder(192, 0, 2, 4);
  sockets.names["..."] = NetworkOrder(192, 0, 2, 9);
  sockets.names["10.0.0"] = NetworkOrder(192, 0, 2, 5);
  sockets.names["10.0.0.5.6"] = NetworkOrder(192, 0, 2, 6);
  sockets.names[std::string(79, 'h')] = NetworkOrder(192, 0, 2, 7);
  sockets.names[std::string(80, 'h')] = NetworkOrder(192, 0, 2, 8);
}

// What was looked up, one name after the other.
inline std::string LookedUp(const FaultySockets& sockets) {
  std::string names;
  for (const std::string& call : sockets.calls) {
    if (call.starts_with("LookUp ")) names += (names.empty() ? "" : " ") + call.substr(7);
  }
  return names;
}

}  // namespace Vask::Tests
