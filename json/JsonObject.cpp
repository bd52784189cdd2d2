#include "json/JsonObject.h"

#include "json/JsonWriter.h"

namespace Vask {

JsonObject::~JsonObject() {
  ReleaseChildren();
}

bool JsonObject::Set(const char* key, Json* value) {
  if (value == nullptr) return false;
  Dictionary::Path path(m_members);
  if (key != nullptr) {
    for (; *key != '\0'; ++key) path.Append(*key);
  }
  value->AddRef();
  Adopt(path.End(), value);
  return true;
}

void JsonObject::Adopt(Dictionary::Node* node, Json* value) noexcept {
  if (node == nullptr) return;
  if (node->hasValue) node->value->Release();
  node->value = value;
  node->hasValue = 1;
}

Json* JsonObject::TakeChild() noexcept {
  Json* child = nullptr;
  m_members.TakeFirst(child);
  return child;
}

void JsonObject::Write(std::string& out) const {
  JsonWriter::Compact(*this, out);
}

void JsonObject::WritePretty(std::string& out, std::uint32_t indentLevel) const {
  JsonWriter::Pretty(*this, indentLevel, out);
}

}  // namespace Vask
