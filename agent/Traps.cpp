#include "agent/Traps.h"

#include "agent/TrapTable.h"

namespace Agent {

void RegisterTraps(TrapTable& table) {
  for (const TrapRow& row : kTraps) table.Register(row.specificTrap, row.name);
}

}  // namespace Agent
