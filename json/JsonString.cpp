#include "json/JsonString.h"

#include "json/JsonWriter.h"

namespace Vask {

void JsonString::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonString::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

}  // namespace Vask
