#pragma once

#include <string>

#include "platform/Snmp.h"

namespace Vask::Tests {

// Object identifiers as tests write them: "P" at the start stands for the agent's own
// prefix, so "P.1.0" is `ProductName`. FullName replaces the "P" by the prefix, and
// ShortName replaces the prefix by "P".
std::string FullName(const std::string& name);
std::string ShortName(const std::string& dotted);

// Frees the value that a request returned, if it is a text.
void FreeText(AsnAny& value);

// One variable binding of a request, and its memory. The utility functions allocate the
// name, as in the service. At first it has no value.
class Binding {
 public:
  explicit Binding(const std::string& name);
  ~Binding();
  Binding(const Binding&) = delete;
  Binding& operator=(const Binding&) = delete;

  SnmpVarBind& Get() { return m_binding; }

  // The same binding for the next request. Frees the value of the last one, as the
  // service does between the steps of a walk.
  SnmpVarBind& Again();

  // The present name, short.
  [[nodiscard]] std::string Name() const;
  // "INT 5", "STRING 'text'" or "none".
  [[nodiscard]] std::string Value() const;

 private:
  SnmpVarBind m_binding{};
};

}  // namespace Vask::Tests
