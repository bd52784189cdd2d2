#include "json/JsonBool.h"

#include "json/JsonWriter.h"

namespace Vask {

void JsonBool::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonBool::WritePretty(std::string& out, std::uint32_t) const {
  Write(out);
}

}  // namespace Vask
