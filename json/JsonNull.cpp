#include "json/JsonNull.h"

#include "json/JsonWriter.h"

namespace Vask {

void JsonNull::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonNull::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

}  // namespace Vask
