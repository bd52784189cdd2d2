#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/Oid.h"

namespace Host {

// What a request asks of the module; the numbers are the contract's.
enum class PduType : std::uint8_t { Get = 0xA0, GetNext = 0xA1, Set = 0xA3 };

// An SNMP error status as the module answers it (0 noError, 2 noSuchName,
// 5 genErr, 17 notWritable, ...).
using ErrorStatus = std::int32_t;
inline constexpr ErrorStatus kNoError = 0;
inline constexpr ErrorStatus kNoSuchName = 2;
inline constexpr ErrorStatus kGenErr = 5;

// One value with its ASN.1 tag. Which of the three holds the content follows
// from the tag: 32-bit numbers of every kind, bytes, or an identifier; the tag
// 5 (NULL) holds nothing.
struct Value {
  std::uint8_t asnType = 5;
  std::variant<std::monostate, std::int32_t, std::string, Oid> content;
};

struct Binding {
  Oid name;
  Value value;
};

// A trap as the module hands it out; the time stamp is the module's own.
struct Trap {
  Oid enterprise;
  std::int32_t generic = 0;
  std::int32_t specific = 0;
  std::uint32_t timeStamp = 0;
  std::vector<Binding> bindings;
};

// A loaded extension agent. It is the border between the two halves of the
// host: this header names neither net-snmp nor the operating system, so that
// the half that stands on <windows.h> and the half that stands on net-snmp's
// headers can both include it.
//
// All functions are called from one thread, as the SNMP service does. Errors
// are values; what the module throws or crashes with is not caught.
class ExtensionModule {
 public:
  // Loads the module file and finds its three exports. Null on failure, with
  // the reason in `error`.
  [[nodiscard]] static std::unique_ptr<ExtensionModule> Load(const std::string& path,
                                                             std::string& error);

  // Unloads the module: its unload hook runs before this returns.
  virtual ~ExtensionModule() = default;

  // Starts the module, once. False when its start failed; it is to be served
  // all the same. The view is empty when the module named none.
  [[nodiscard]] virtual bool Start(Oid& supportedView) = 0;

  // Asks for one binding, which is given the answered name and value. An
  // answer of FALSE, or of a kind that this host cannot carry, is genErr.
  [[nodiscard]] virtual ErrorStatus Query(PduType type, Binding& binding) = 0;

  // A file descriptor that is readable after the module has signalled its trap
  // event; -1 before Start, or when the module has no such event. Stays owned
  // by this object.
  [[nodiscard]] virtual int TrapDescriptor() const = 0;

  // Takes the signal, so that the descriptor is no longer readable. Call it
  // before NextTrap, or a trap that is queued meanwhile could be missed.
  virtual void TakeTrapSignal() = 0;

  // The module's next trap; false when it has no more.
  [[nodiscard]] virtual bool NextTrap(Trap& trap) = 0;

 protected:
  ExtensionModule() = default;
  ExtensionModule(const ExtensionModule&) = delete;
  ExtensionModule& operator=(const ExtensionModule&) = delete;
};

}  // namespace Host
