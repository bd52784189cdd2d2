#pragma once

#include <cstdint>
#include <string>

namespace Agent {

// One kind of trap that the agent can send.
struct TRAP_ENTRY {
  std::uint32_t m_specificTrap;  // the number that managers tell traps apart by
  std::string m_name;
};

}  // namespace Agent
