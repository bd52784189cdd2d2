#pragma once

#include <string_view>

#include "json/Json.h"

namespace Vask {

// A string: bytes, UTF-8 where they are not ASCII. The text never changes once
// the value is handed out.
class JsonString final : public Json {
 public:
  // A new string with a copy of `text`; the caller owns the one reference. It
  // lies in `memory`, or in the heap.
  [[nodiscard]] static JsonString* Create(std::string_view text = {},
                                          ValueMemory* memory = nullptr) {
    const auto copy = [text](char* buffer) { return text.copy(buffer, text.size()); };
    return CreateFilled(text.size(), copy, memory);
  }

  // A new string whose text is written in place: fill(buffer) gets room for
  // `capacity` bytes and answers how many it has used. It must not throw.
  template <class Fill>
  [[nodiscard]] static JsonString* CreateFilled(std::size_t capacity, Fill fill,
                                                ValueMemory* memory = nullptr) {
    auto* string = new (Place{memory, capacity + 1}) JsonString;
    char* buffer = reinterpret_cast<char*>(string) + sizeof(JsonString);
    string->m_size = fill(buffer);
    buffer[string->m_size] = '\0';
    return string;
  }

  // The whole text; it lives as long as the value.
  [[nodiscard]] std::string_view Text() const noexcept { return {CStr(), m_size}; }
  // The same, ended by a NUL.
  [[nodiscard]] const char* CStr() const noexcept {
    return reinterpret_cast<const char*>(this) + sizeof(JsonString);
  }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonString() override = default;

 private:
  JsonString() noexcept : Json(JsonType::String) {}

  std::size_t m_size;  // the text lies behind the object
};

}  // namespace Vask
