#include "agent/Variables.h"

#include <iterator>

#include "Src/LogPrinter.h"
#include "agent/MibTable.h"
#include "agent/ObjectIdentifier.h"

namespace Agent {

void RegisterVariables(MibTable& table) {
  MIB_ENTRY* next = nullptr;
  for (auto row = std::rbegin(kVariables); row != std::rend(kVariables); ++row) {
    const AsnObjectIdentifier suffix = Lend(row->suffix);
    next = row->type == kTypeInt
               ? table.RegisterInt(suffix, row->name, next, row->number)
               : table.RegisterString(suffix, row->name, next, row->capacity, row->text);
    if (next == nullptr) next = table.Find(row->name);
    if (next == nullptr)
      Vask::LogPrinter::Instance().Error("Unable to register variable '%s'!\n", row->name);
  }
}

}  // namespace Agent
