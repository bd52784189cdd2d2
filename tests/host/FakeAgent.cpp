// A small extension agent for the host's tests. It is built as a shared object and
// as a DLL, in three variants: complete, with a start that fails
// (FAKE_START_FAILS), and without one of the exports (FAKE_LACKS_TRAP).
//
//   view.1          INTEGER -5
//   view.2          OCTET STRING "two\0bytes"
//   view.3.1.C.R    text "C.R" in two columns of three rows
//   view.4          Counter32 4294967295
//   view.5          OBJECT IDENTIFIER 1.3.6.1
//   view.6          a value of an unknown kind
//   view.7          the module returns FALSE
//   view.8          INTEGER; GetNext of it returns its own name
//   view.9          INTEGER; setting it to N queues the traps 1 to N
//
// The module refuses every other Set: with wrongValue if it sets view.2 to the text
// "two" or view.5 to the OBJECT IDENTIFIER 1.3.6.2, else with notWritable.
//
// The start queues as many traps as the environment variable FAKE_TRAPS_AT_START says.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/Snmp.h"

#if defined(_WIN32)
#define FAKE_EXPORT extern "C" __declspec(dllexport)
using TimeStamp = AsnTimeticks;
#else
#include "platform/Threading.h"
using TimeStamp = UINT;
#define WINAPI
#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using Number = decltype(AsnAny{}.asnValue.number);
using Ids = std::vector<UINT>;

const Ids view = {1, 3, 6, 1, 3, 4711};
UINT viewIds[] = {1, 3, 6, 1, 3, 4711};
HANDLE trapEvent = nullptr;
Number trapsLeft = 0;
Number trapsSent = 0;

void* MakeTrapEvent() {
#if defined(_WIN32)
  return CreateEventA(nullptr, FALSE, FALSE, nullptr);
#else
  using namespace Vask::Platform;
  return SystemThreading().CreateEvent(EventReset::Automatic);
#endif
}

void SignalTrapEvent() {
#if defined(_WIN32)
  SetEvent(trapEvent);
#else
  Vask::Platform::SystemThreading().SetEvent(trapEvent);
#endif
}

// Returns all names under the view, in order.
std::vector<Ids> Names() {
  std::vector<Ids> names = {{1}, {2}};
  for (UINT column = 1; column <= 2; ++column) {
    for (UINT row = 1; row <= 3; ++row) names.push_back({3, 1, column, row});
  }
  for (UINT last = 4; last <= 9; ++last) names.push_back({last});
  for (Ids& name : names) name.insert(name.begin(), view.begin(), view.end());
  return names;
}

void StoreText(AsnAny& value, const char* text, UINT length) {
  value.asnType = ASN_OCTETSTRING;
  value.asnValue.string.stream = static_cast<BYTE*>(SnmpUtilMemAlloc(length));
  std::memcpy(value.asnValue.string.stream, text, length);
  value.asnValue.string.length = length;
  value.asnValue.string.dynamic = TRUE;
}

void StoreName(AsnObjectIdentifier& target, Ids name) {
  AsnObjectIdentifier source{};
  source.ids = name.data();
  source.idLength = static_cast<UINT>(name.size());
  SnmpUtilOidFree(&target);
  SnmpUtilOidCpy(&target, &source);
}

void StoreValue(AsnAny& value, const Ids& name) {
  value.asnType = ASN_INTEGER;
  value.asnValue.number = static_cast<Number>(name.back());
  switch (name[view.size()]) {
    case 1:
      value.asnValue.number = -5;
      break;
    case 2:
      StoreText(value, "two\0bytes", 9);
      break;
    case 3: {
      char text[32];
      const int length = std::snprintf(text, sizeof text, "%u.%u", static_cast<unsigned>(name[8]),
                                       static_cast<unsigned>(name[9]));
      StoreText(value, text, static_cast<UINT>(length));
      break;
    }
    case 4:
      value.asnType = 0x41;
      value.asnValue.number = -1;
      break;
    case 5:
      value.asnType = ASN_OBJECTIDENTIFIER;
      value.asnValue.object = {};
      StoreName(value.asnValue.object, {1, 3, 6, 1});
      break;
    case 6:
      value.asnType = 0x99;
      break;
    default:
      break;
  }
}

int Get(SnmpVarBind& binding, const Ids& asked) {
  for (const Ids& name : Names()) {
    if (name == asked) {
      StoreValue(binding.value, name);
      return 0;
    }
  }
  return 2;
}

int GetNext(SnmpVarBind& binding, const Ids& asked) {
  Ids after = asked;
  if (after.size() == view.size() + 1 && after.back() == 8) after.back() = 7;
  for (const Ids& name : Names()) {
    if (name > after) {
      StoreName(binding.name, name);
      StoreValue(binding.value, name);
      return 0;
    }
  }
  return 2;
}

bool IsText(const AsnAny& value, const char* text) {
  const AsnOctetString& string = value.asnValue.string;
  return value.asnType == ASN_OCTETSTRING && string.length == std::strlen(text) &&
         std::memcmp(string.stream, text, string.length) == 0;
}

bool IsName(const AsnAny& value, const Ids& name) {
  const AsnObjectIdentifier& object = value.asnValue.object;
  return value.asnType == ASN_OBJECTIDENTIFIER &&
         Ids(object.ids, object.ids + object.idLength) == name;
}

void QueueTraps(Number count) {
  trapsLeft = count;
  trapsSent = 0;
  SignalTrapEvent();
}

int Set(const SnmpVarBind& binding, const Ids& asked) {
  if (asked.back() == 2 && IsText(binding.value, "two")) return 10;
  if (asked.back() == 5 && IsName(binding.value, {1, 3, 6, 2})) return 10;
  if (asked.back() != 9 || binding.value.asnType != ASN_INTEGER) return 17;
  QueueTraps(binding.value.asnValue.number);
  return 0;
}

int Answer(BYTE type, SnmpVarBind& binding) {
  const Ids asked(binding.name.ids, binding.name.ids + binding.name.idLength);
  if (type == SNMP_PDU_GET) return Get(binding, asked);
  if (type == SNMP_PDU_GETNEXT) return GetNext(binding, asked);
  return Set(binding, asked);
}

void Unload() {
  static_cast<void>(std::fputs("fake agent: unloaded\n", stderr));
  static_cast<void>(std::fflush(stderr));
}

}  // namespace

FAKE_EXPORT BOOL WINAPI SnmpExtensionInit(DWORD, HANDLE* event, AsnObjectIdentifier* supported) {
  trapEvent = MakeTrapEvent();
  *event = trapEvent;
  supported->ids = viewIds;
  supported->idLength = static_cast<UINT>(view.size());
  if (const char* const count = std::getenv("FAKE_TRAPS_AT_START")) QueueTraps(std::atoi(count));
#if defined(FAKE_START_FAILS)
  return FALSE;
#else
  return TRUE;
#endif
}

FAKE_EXPORT BOOL WINAPI SnmpExtensionQuery(BYTE type, SnmpVarBindList* list, Number* status,
                                           Number* index) {
  *index = 0;
  *status = Answer(type, list->list[0]);
  const AsnObjectIdentifier& name = list->list[0].name;
  return name.idLength == 7 && name.ids[6] == 7 && type == SNMP_PDU_GET ? FALSE : TRUE;
}

#if !defined(FAKE_LACKS_TRAP)
FAKE_EXPORT BOOL WINAPI SnmpExtensionTrap(AsnObjectIdentifier* enterprise, Number* generic,
                                          Number* specific, TimeStamp* timeStamp,
                                          SnmpVarBindList* bindings) {
  if (trapsLeft <= 0) return FALSE;
  --trapsLeft;
  ++trapsSent;
  enterprise->ids = viewIds;
  enterprise->idLength = static_cast<UINT>(view.size());
  *generic = SNMP_GENERICTRAP_ENTERSPECIFIC;
  *specific = trapsSent;
  *timeStamp = 1000000u + static_cast<TimeStamp>(trapsSent);
  bindings->list = nullptr;
  bindings->len = 0;
  return TRUE;
}
#endif

#if defined(_WIN32)
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_DETACH) Unload();
  return TRUE;
}
#else
extern "C" __attribute__((destructor)) void UnloadHook() {
  Unload();
}
#endif
