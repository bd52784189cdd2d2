#include "tests/contract/Module.h"

#include <cstdio>
#include <cstdlib>

#include "tests/contract/Library.h"
#include "tests/support/Binding.h"
#include "tests/support/BuildFolder.h"

namespace Contract {

using Vask::Tests::Binding;

namespace {

#if defined(_WIN32)
using TimeStamp = AsnTimeticks;
#else
using TimeStamp = UINT;
#endif

using InitFunction = BOOL(SNMP_FUNC_TYPE*)(DWORD, HANDLE*, AsnObjectIdentifier*);
using QueryFunction = BOOL(SNMP_FUNC_TYPE*)(BYTE, SnmpVarBindList*, AsnInteger*, AsnInteger*);
using TrapFunction = BOOL(SNMP_FUNC_TYPE*)(AsnObjectIdentifier*, AsnInteger*, AsnInteger*,
                                           TimeStamp*, SnmpVarBindList*);

[[noreturn]] void GiveUp(const std::string& reason) {
  std::fprintf(stderr, "%s: %s\n", Module::Path().c_str(), reason.c_str());
  std::exit(2);
}

std::string Dotted(const AsnObjectIdentifier& name) {
  std::string text;
  for (UINT i = 0; i < name.idLength; ++i) text += (i > 0 ? "." : "") + std::to_string(name.ids[i]);
  return Vask::Tests::ShortName(text);
}

}  // namespace

std::string Module::Path() {
  const char* const path = std::getenv("CORVANE_MODULE");
  return path != nullptr && *path != '\0' ? path : Vask::Tests::InBuildFolder(CORVANE_MODULE_PLACE);
}

Module::Module() : m_library(LoadLibraryFile(Path())) {
  if (m_library == nullptr) GiveUp("cannot be loaded");
  m_init = FindFunction(m_library, "SnmpExtensionInit");
  m_query = FindFunction(m_library, "SnmpExtensionQuery");
  m_trap = FindFunction(m_library, "SnmpExtensionTrap");
  if (m_init == nullptr || m_query == nullptr || m_trap == nullptr) GiveUp("lacks an export");
}

void Module::Unload() {
  if (m_library != nullptr) UnloadLibrary(m_library);
  m_library = nullptr;
}

Module::Start Module::Init() {
  Start start;
  const auto init = reinterpret_cast<InitFunction>(m_init);
  start.result = init(0, &start.trapEvent, &start.view) != FALSE;
  return start;
}

std::string Module::Query(BYTE pduType, std::vector<SnmpVarBind>& bindings) {
  SnmpVarBindList list{bindings.data(), static_cast<UINT>(bindings.size())};
  AsnInteger status = -1;
  AsnInteger index = -1;
  const auto query = reinterpret_cast<QueryFunction>(m_query);
  const BOOL result = query(pduType, &list, &status, &index);
  return std::string(result != FALSE ? "TRUE " : "FALSE ") + std::to_string(status) + "/" +
         std::to_string(index);
}

std::string Module::Ask(BYTE pduType, const std::string& name) {
  Binding binding(name);
  SnmpVarBindList list{&binding.Get(), 1};
  AsnInteger status = -1;
  AsnInteger index = -1;
  reinterpret_cast<QueryFunction>(m_query)(pduType, &list, &status, &index);
  return std::to_string(status) + " " + binding.Name() + " = " + binding.Value();
}

std::string Module::Get(const std::string& name) {
  return Ask(SNMP_PDU_GET, name);
}
std::string Module::GetNext(const std::string& name) {
  return Ask(SNMP_PDU_GETNEXT, name);
}

bool Module::TakeTrap(Trap& trap) {
  AsnObjectIdentifier enterprise{0, nullptr};
  AsnInteger generic = 0;
  AsnInteger specific = 0;
  TimeStamp timeStamp = 0;
  SnmpVarBindList bindings{nullptr, 99};
  const auto take = reinterpret_cast<TrapFunction>(m_trap);
  if (take(&enterprise, &generic, &specific, &timeStamp, &bindings) == FALSE) return false;
  trap = {Dotted(enterprise), static_cast<std::int32_t>(generic),
          static_cast<std::int32_t>(specific), static_cast<std::uint32_t>(timeStamp), bindings.len};
  return true;
}

std::vector<std::int32_t> Module::TakeTraps() {
  std::vector<std::int32_t> numbers;
  for (Trap trap; TakeTrap(trap);) numbers.push_back(trap.specific);
  return numbers;
}

}  // namespace Contract
