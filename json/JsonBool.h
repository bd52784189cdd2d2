#pragma once

#include "json/Json.h"

namespace Vask {

// A truth value: `true` or `false`.
class JsonBool final : public Json {
 public:
  explicit JsonBool(bool value = false) noexcept : Json(JsonType::Bool), m_value(value) {}

  [[nodiscard]] bool Value() const noexcept { return m_value; }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonBool() override = default;

 private:
  bool m_value;
};

}  // namespace Vask
