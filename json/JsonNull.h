#pragma once

#include "json/Json.h"

namespace Vask {

// The value `null`.
class JsonNull final : public Json {
 public:
  JsonNull() noexcept : Json(JsonType::Null) {}

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonNull() override = default;
};

}  // namespace Vask
