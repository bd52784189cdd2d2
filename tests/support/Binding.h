#pragma once

#include <string>

#include "platform/Snmp.h"

namespace Vask::Tests {

// Object identifiers as tests write them: "P" at the start stands for the
// agent's own prefix, so "P.1.0" is `ProductName`.
//
// Full gives the whole dotted text, Short puts the "P" back where it fits.
std::string FullName(const std::string& name);
std::string ShortName(const std::string& dotted);

// Frees the text that a request answered, if it is one.
void FreeText(AsnAny& value);

// One variable binding of a request, with its memory: the name in the utility
// functions' own, as the service has it, and no value at first.
class Binding {
 public:
  explicit Binding(const std::string& name);
  ~Binding();
  Binding(const Binding&) = delete;
  Binding& operator=(const Binding&) = delete;

  SnmpVarBind& Get() { return m_binding; }

  // The same for a request that follows another: what that answered is freed,
  // as the service does between the steps of a walk.
  SnmpVarBind& Again();

  // The present name, short.
  [[nodiscard]] std::string Name() const;
  // "INT 5", "STRING 'text'" or "none".
  [[nodiscard]] std::string Value() const;

 private:
  SnmpVarBind m_binding{};
};

}  // namespace Vask::Tests
