#pragma once

#include <initializer_list>
#include <span>
#include <string>

#include "platform/Snmp.h"

namespace Agent {

// An object identifier that owns its sub-identifiers, in the memory of the
// SNMP utility functions, and gives them back with those. For names that are
// lent, the contract's plain AsnObjectIdentifier serves.
//
// One object belongs to one thread at a time.
class ObjectIdentifier {
 public:
  ObjectIdentifier() = default;  // of length 0
  ~ObjectIdentifier();
  ObjectIdentifier(const ObjectIdentifier&) = delete;
  ObjectIdentifier& operator=(const ObjectIdentifier&) = delete;

  // Becomes the parts one after another, each copied. False when there is no
  // memory for it or the result is longer than the utility functions allow
  // (128 on Windows); what was held before is gone in any case.
  [[nodiscard]] bool Join(std::initializer_list<AsnObjectIdentifier> parts);

  // Refers to this object's memory; valid until it changes or goes.
  [[nodiscard]] const AsnObjectIdentifier& Name() const noexcept { return m_name; }

  // Puts what this object holds into `name` and frees what `name` held, which
  // must be the utility functions' memory. This object is empty afterwards.
  void MoveInto(AsnObjectIdentifier& name) noexcept;

 private:
  void Clear() noexcept;

  AsnObjectIdentifier m_name{0, nullptr};
};

// A name that refers to sub-identifiers which live elsewhere and which nobody
// may write through it: the contract's type has no const.
[[nodiscard]] AsnObjectIdentifier Lend(std::span<const UINT> ids) noexcept;

// Compares the whole of `key` with as much of `name`: 0 when `key` is a leading
// part of `name` (or all of it), below 0 when it lies before, above 0 when it
// lies behind. Sub-identifier by sub-identifier; length counts last, so a
// `name` that is itself a leading part of a longer `key` lies before it.
[[nodiscard]] int CompareLeading(const AsnObjectIdentifier& key,
                                 const AsnObjectIdentifier& name) noexcept;

// Compares two whole names in the order in which managers walk them: below 0,
// 0 or above 0, sub-identifier by sub-identifier, and of two names that are
// alike so far the shorter one first.
[[nodiscard]] int CompareWhole(const AsnObjectIdentifier& first,
                               const AsnObjectIdentifier& second) noexcept;

// The sub-identifiers in decimal with single points between them, as in
// "1.3.6.1"; empty for a name of length 0.
[[nodiscard]] std::string DottedText(const AsnObjectIdentifier& name);

// The same of both, with a point between them even where `suffix` is empty.
[[nodiscard]] std::string DottedText(const AsnObjectIdentifier& prefix,
                                     const AsnObjectIdentifier& suffix);

}  // namespace Agent
