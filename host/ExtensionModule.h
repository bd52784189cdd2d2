#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace Host {

// An object identifier as the host keeps it. It owns its sub-identifiers. Comparisons go
// sub-identifier by sub-identifier. If one identifier begins with the other, the shorter
// one is lower.
using Oid = std::vector<std::uint32_t>;

// Returns dotted decimal text, without a leading point.
[[nodiscard]] inline std::string ToText(const Oid& oid) {
  std::string text;
  for (const std::uint32_t id : oid) {
    if (!text.empty()) text += '.';
    text += std::to_string(id);
  }
  return text;
}

// True if `oid` is `root` or lies under it.
[[nodiscard]] inline bool IsUnder(const Oid& oid, const Oid& root) {
  return oid.size() >= root.size() && std::equal(root.begin(), root.end(), oid.begin());
}

// The kind of a request; the numbers are the contract's.
enum class PduType : std::uint8_t { Get = 0xA0, GetNext = 0xA1, Set = 0xA3 };

// An SNMP error status that the module returns (0 noError, 2 noSuchName,
// 5 genErr, 17 notWritable, ...).
using ErrorStatus = std::int32_t;
inline constexpr ErrorStatus kNoError = 0;
inline constexpr ErrorStatus kNoSuchName = 2;
inline constexpr ErrorStatus kGenErr = 5;

// One value with its ASN.1 tag. The tag determines the kind of the content: a
// 32-bit number, bytes or an identifier; the tag 5 (NULL) has no content.
struct Value {
  std::uint8_t asnType = 5;
  std::variant<std::monostate, std::int32_t, std::string, Oid> content;
};

struct Binding {
  Oid name;
  Value value;
};

// A trap that the module returns; the time stamp is the module's own.
struct Trap {
  Oid enterprise;
  std::int32_t generic = 0;
  std::int32_t specific = 0;
  std::uint32_t timeStamp = 0;
  std::vector<Binding> bindings;
};

// A loaded extension agent. This header includes neither net-snmp's headers nor
// the operating system's, so that both halves of the host can include it: the
// one that uses <windows.h> and the one that uses net-snmp.
//
// The caller uses one thread for all functions, as the SNMP service does. Errors
// are values. The host does not catch an exception or a crash of the module.
class ExtensionModule {
 public:
  // Loads the module file and finds its three exports. Null on failure; `error`
  // is then the reason.
  [[nodiscard]] static std::unique_ptr<ExtensionModule> Load(const std::string& path,
                                                             std::string& error);

  // Unloads the module: its unload hook runs before this returns.
  virtual ~ExtensionModule() = default;

  // Starts the module. Call it once. False if the module's start failed; the
  // host serves the module nevertheless. The view is empty if the module named
  // none.
  [[nodiscard]] virtual bool Start(Oid& supportedView) = 0;

  // Passes one binding to the module and stores the module's name and value in
  // it. Returns genErr if the module returns FALSE or a kind of value that this
  // host does not support.
  [[nodiscard]] virtual ErrorStatus Query(PduType type, Binding& binding) = 0;

  // A file descriptor that is readable after the module has signalled its trap
  // event; -1 before Start, or if the module has no such event. This object owns
  // the descriptor.
  [[nodiscard]] virtual int TrapDescriptor() const = 0;

  // Resets the signal, so that the descriptor is no longer readable. Call it
  // before NextTrap; otherwise a trap that the module queues meanwhile can be
  // missed.
  virtual void TakeTrapSignal() = 0;

  // Stores the module's next trap. False if there is none.
  [[nodiscard]] virtual bool NextTrap(Trap& trap) = 0;

 protected:
  ExtensionModule() = default;
  ExtensionModule(const ExtensionModule&) = delete;
  ExtensionModule& operator=(const ExtensionModule&) = delete;
};

}  // namespace Host
