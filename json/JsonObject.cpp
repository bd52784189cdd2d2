#include "json/JsonObject.h"

#include "json/JsonWriter.h"

namespace Vask {

bool JsonObject::Set(const char* key, Json* value) {
  if (value == nullptr) return false;
  Dictionary::Path path(m_members);
  if (key != nullptr) path.Append(key);
  value->AddRef();
  if (path.End() != nullptr) Adopt(path.End(), value);
  return true;
}

void JsonObject::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonObject::WritePretty(std::string& out, std::uint32_t indentLevel) const {
  JsonWriter::Pretty(*this, indentLevel, out);
}

}  // namespace Vask
