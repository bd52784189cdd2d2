#include "json/JsonString.h"

#include "json/JsonWriter.h"

namespace Vask {

JsonString* JsonString::Create(std::string_view text) {
  JsonString* string = CreateWithRoom(text.size());
  text.copy(string->Buffer(), text.size());
  string->SetSize(text.size());
  return string;
}

void JsonString::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonString::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

}  // namespace Vask
