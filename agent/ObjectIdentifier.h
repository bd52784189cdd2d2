#pragma once

#include <initializer_list>
#include <span>
#include <string>

#include "BuildSettings.h"
#include "platform/Snmp.h"

namespace Agent {

// All variables and traps of the agent lie under this one name,
// 1.3.6.1.4.1.E.333. E is the private enterprise number of the organisation that
// deploys the agent. It is a setting of the build.
//
// The object owns the eight sub-identifiers that the callers of the entry points
// receive. Name() points into it, so it must live as long as any caller may hold
// that result. Any thread may read.
class EnterprisePrefix {
 public:
  static constexpr UINT kLength = 8;

  // Refers to this object's own array. The receiver must not free or change it; the
  // contract's types have no const for this rule.
  [[nodiscard]] AsnObjectIdentifier Name() noexcept { return {kLength, m_ids}; }

 private:
  UINT m_ids[kLength] = {1, 3, 6, 1, 4, 1, CORVANE_ENTERPRISE, 333};
};

// An object identifier that owns its sub-identifiers. The SNMP utility functions
// allocate and free them. Use the contract's plain AsnObjectIdentifier for names
// that are lent.
//
// One object belongs to one thread at a time.
class ObjectIdentifier {
 public:
  ObjectIdentifier() = default;  // of length 0
  ~ObjectIdentifier();
  ObjectIdentifier(const ObjectIdentifier&) = delete;
  ObjectIdentifier& operator=(const ObjectIdentifier&) = delete;

  // Becomes the concatenation of the parts, each copied. Returns false if there
  // is no memory for it, or if the result is longer than the utility functions
  // allow (128 on Windows). The previous name is gone in any case.
  [[nodiscard]] bool Join(std::initializer_list<AsnObjectIdentifier> parts);

  // Refers to this object's memory; valid until the object changes or is
  // destroyed.
  [[nodiscard]] const AsnObjectIdentifier& Name() const noexcept { return m_name; }

  // Moves this object's name into `name` and frees the previous content of
  // `name`, which must be memory of the utility functions. This object is empty
  // afterwards.
  void MoveInto(AsnObjectIdentifier& name) noexcept;

 private:
  void Clear() noexcept;

  AsnObjectIdentifier m_name{0, nullptr};
};

// A name that refers to sub-identifiers of another owner. Do not write through it; the
// contract's type has no const for this rule.
[[nodiscard]] AsnObjectIdentifier Lend(std::span<const UINT> ids) noexcept;

// Compares the whole of `key` with the leading part of `name` that is as long. Returns 0
// if `key` is a leading part of `name` or all of it. Returns a value below 0 if `key`
// comes before `name`, and a value above 0 if it comes after. Compares sub-identifier by
// sub-identifier. Length counts last: a `name` that is a leading part of a longer `key`
// comes before it.
[[nodiscard]] int CompareLeading(const AsnObjectIdentifier& key,
                                 const AsnObjectIdentifier& name) noexcept;

// Compares two whole names in the order of a walk. Returns a value below 0, 0 or
// above 0. Compares sub-identifier by sub-identifier; if one name is a leading
// part of the other, the shorter one comes first.
[[nodiscard]] int CompareWhole(const AsnObjectIdentifier& first,
                               const AsnObjectIdentifier& second) noexcept;

// The sub-identifiers in decimal with single points between them, as in
// "1.3.6.1"; empty for a name of length 0.
[[nodiscard]] std::string DottedText(const AsnObjectIdentifier& name);

// Both names, with a point between them even if `suffix` is empty.
[[nodiscard]] std::string DottedText(const AsnObjectIdentifier& prefix,
                                     const AsnObjectIdentifier& suffix);

}  // namespace Agent
