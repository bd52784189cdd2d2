// The contract side of the host. It is compiled natively for shared objects and
// with winelib for DLLs, because platform/Snmp.h declares the same contract on both
// systems.

#include <cstring>
#include <utility>

#include "host/ExtensionModule.h"
#include "host/ModuleLibrary.h"
#include "platform/Snmp.h"

#ifndef WINAPI
#define WINAPI
#endif

namespace Host {
namespace {

// The two systems' headers spell the integer's name differently.
using Number = decltype(std::declval<AsnAny&>().asnValue.number);

using InitFunction = BOOL(WINAPI*)(DWORD, HANDLE*, AsnObjectIdentifier*);
using QueryFunction = BOOL(WINAPI*)(BYTE, SnmpVarBindList*, Number*, Number*);
using TrapFunction = BOOL(WINAPI*)(AsnObjectIdentifier*, Number*, Number*, UINT*, SnmpVarBindList*);

constexpr std::uint8_t kInteger = 0x02;
constexpr std::uint8_t kOctetString = 0x04;
constexpr std::uint8_t kNull = 0x05;
constexpr std::uint8_t kObjectIdentifier = 0x06;
constexpr std::uint8_t kIpAddress = 0x40;
constexpr std::uint8_t kCounter = 0x41;
constexpr std::uint8_t kGauge = 0x42;
constexpr std::uint8_t kTimeTicks = 0x43;
constexpr std::uint8_t kOpaque = 0x44;

bool IsNumber(std::uint8_t type) {
  return type == kInteger || type == kCounter || type == kGauge || type == kTimeTicks;
}

bool IsBytes(std::uint8_t type) {
  return type == kOctetString || type == kIpAddress || type == kOpaque;
}

Oid FromContract(const AsnObjectIdentifier& oid) {
  return oid.ids == nullptr ? Oid() : Oid(oid.ids, oid.ids + oid.idLength);
}

// Returns a copy in the contract's own memory, which either side may free. Empty
// if there is no memory.
AsnObjectIdentifier ToContract(Oid oid) {
  AsnObjectIdentifier copy{};
  AsnObjectIdentifier source{};
  source.idLength = static_cast<UINT>(oid.size());
  source.ids = oid.data();
  if (!oid.empty() && SnmpUtilOidCpy(&copy, &source) == 0) copy = {};
  return copy;
}

AsnOctetString ToContract(const std::string& bytes) {
  AsnOctetString copy{};
  copy.stream = static_cast<BYTE*>(SnmpUtilMemAlloc(static_cast<UINT>(bytes.size() + 1)));
  if (copy.stream == nullptr) return copy;
  std::memcpy(copy.stream, bytes.c_str(), bytes.size() + 1);
  copy.length = static_cast<UINT>(bytes.size());
  copy.dynamic = TRUE;
  return copy;
}

AsnAny ToContract(const Value& value) {
  AsnAny any{};
  any.asnType = value.asnType;
  if (const auto* number = std::get_if<std::int32_t>(&value.content)) {
    any.asnValue.number = *number;
  } else if (const auto* bytes = std::get_if<std::string>(&value.content)) {
    any.asnValue.string = ToContract(*bytes);
  } else if (const auto* oid = std::get_if<Oid>(&value.content)) {
    any.asnValue.object = ToContract(*oid);
  }
  return any;
}

// False for a tag that this host does not support.
bool FromContract(const AsnAny& any, Value& value) {
  value.asnType = any.asnType;
  if (IsNumber(any.asnType)) {
    value.content = static_cast<std::int32_t>(any.asnValue.number);
  } else if (IsBytes(any.asnType)) {
    const AsnOctetString& bytes = any.asnValue.string;
    value.content = bytes.stream == nullptr
                        ? std::string()
                        : std::string(reinterpret_cast<const char*>(bytes.stream), bytes.length);
  } else if (any.asnType == kObjectIdentifier) {
    value.content = FromContract(any.asnValue.object);
  } else {
    value.content = std::monostate();
    return any.asnType == kNull;
  }
  return true;
}

// Frees what the contract gives to the receiver.
void Free(SnmpVarBind& binding) {
  SnmpUtilOidFree(&binding.name);
  if (IsBytes(binding.value.asnType) && binding.value.asnValue.string.dynamic != 0) {
    SnmpUtilMemFree(binding.value.asnValue.string.stream);
  } else if (binding.value.asnType == kObjectIdentifier) {
    SnmpUtilOidFree(&binding.value.asnValue.object);
  }
}

class ContractModule final : public ExtensionModule {
 public:
  ContractModule(std::unique_ptr<ModuleLibrary> library, InitFunction init, QueryFunction query,
                 TrapFunction trap)
      : m_library(std::move(library)), m_init(init), m_query(query), m_trap(trap) {}

  bool Start(Oid& supportedView) override {
    HANDLE trapEvent = nullptr;
    AsnObjectIdentifier view{};
    // The time-zero reference is the service's start. It is zero here, because
    // this host has no other agents whose time stamps must agree.
    const bool started = m_init(0, &trapEvent, &view) != 0;
    supportedView = FromContract(view);
    if (trapEvent != nullptr) m_trapDescriptor = m_library->Watch(trapEvent);
    return started;
  }

  ErrorStatus Query(PduType type, Binding& binding) override {
    SnmpVarBind asked{};
    asked.name = ToContract(binding.name);
    asked.value = ToContract(binding.value);
    SnmpVarBindList list{};
    list.list = &asked;
    list.len = 1;
    Number status = kNoError;
    Number index = 0;
    if (m_query(static_cast<BYTE>(type), &list, &status, &index) == 0) status = kGenErr;
    if (status == kNoError) {
      binding.name = FromContract(asked.name);
      if (!FromContract(asked.value, binding.value)) status = kGenErr;
    }
    Free(asked);
    return static_cast<ErrorStatus>(status);
  }

  int TrapDescriptor() const override { return m_trapDescriptor; }
  void TakeTrapSignal() override { m_library->TakeSignal(); }

  bool NextTrap(Trap& trap) override {
    AsnObjectIdentifier enterprise{};
    Number generic = 0;
    Number specific = 0;
    UINT timeStamp = 0;
    SnmpVarBindList bindings{};
    if (m_trap(&enterprise, &generic, &specific, &timeStamp, &bindings) == 0) return false;
    // The module keeps the array of the enterprise; the receiver frees the list.
    trap = Trap{FromContract(enterprise),
                static_cast<std::int32_t>(generic),
                static_cast<std::int32_t>(specific),
                timeStamp,
                {}};
    for (UINT i = 0; i < bindings.len; ++i) {
      Binding binding{FromContract(bindings.list[i].name), {}};
      if (FromContract(bindings.list[i].value, binding.value)) trap.bindings.push_back(binding);
      Free(bindings.list[i]);
    }
    SnmpUtilMemFree(bindings.list);
    return true;
  }

 private:
  std::unique_ptr<ModuleLibrary> m_library;
  InitFunction m_init;
  QueryFunction m_query;
  TrapFunction m_trap;
  int m_trapDescriptor = -1;
};

// Returns the export as a function of that type. If the module lacks it, adds its
// name to `missing`.
template <class Function>
Function Find(const ModuleLibrary& library, const char* name, std::string& missing) {
  void* const address = library.Find(name);
  if (address == nullptr) missing += std::string(missing.empty() ? "" : ", ") + name;
  return reinterpret_cast<Function>(address);
}

}  // namespace

std::unique_ptr<ExtensionModule> ExtensionModule::Load(const std::string& path,
                                                       std::string& error) {
  std::unique_ptr<ModuleLibrary> library = ModuleLibrary::Open(path, error);
  if (library == nullptr) return nullptr;
  std::string missing;
  const auto init = Find<InitFunction>(*library, "SnmpExtensionInit", missing);
  const auto query = Find<QueryFunction>(*library, "SnmpExtensionQuery", missing);
  const auto trap = Find<TrapFunction>(*library, "SnmpExtensionTrap", missing);
  if (!missing.empty()) {
    error = "not an SNMP extension agent: it does not export " + missing;
    return nullptr;
  }
  return std::make_unique<ContractModule>(std::move(library), init, query, trap);
}

}  // namespace Host
