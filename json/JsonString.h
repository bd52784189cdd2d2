#pragma once

#include <string_view>

#include "json/Json.h"

namespace Vask {

// A string: bytes, UTF-8 where they are not ASCII. The text never changes once
// the value is handed out.
class JsonString final : public Json {
 public:
  // A new string with a copy of `text`; the caller owns the one reference.
  [[nodiscard]] static JsonString* Create(std::string_view text = {});

  // The whole text; it lives as long as the value.
  [[nodiscard]] std::string_view Text() const noexcept { return {CStr(), m_size}; }
  // The same, ended by a NUL.
  [[nodiscard]] const char* CStr() const noexcept {
    return reinterpret_cast<const char*>(this) + sizeof(JsonString);
  }

  [[nodiscard]] JsonType Type() const noexcept override { return JsonType::String; }
  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonString() override = default;

 private:
  friend class JsonParser;

  JsonString() noexcept : m_size(0) {}

  // For a text of at most `capacity` bytes that is filled in place: write to
  // Buffer(), then end with SetSize().
  static JsonString* CreateWithRoom(std::size_t capacity) {
    return new (TextRoom{capacity + 1}) JsonString;
  }
  char* Buffer() noexcept { return reinterpret_cast<char*>(this) + sizeof(JsonString); }
  void SetSize(std::size_t size) noexcept {
    m_size = size;
    Buffer()[size] = '\0';
  }

  std::size_t m_size;  // the text lies behind the object
};

}  // namespace Vask
