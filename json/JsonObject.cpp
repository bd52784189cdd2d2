#include "json/JsonObject.h"

#include <new>

#include "json/JsonWriter.h"

namespace Vask {

JsonObject::~JsonObject() {
  if (Empty()) return;
  ReleaseChildren();
  m_members.Forget();
}

JsonObject* JsonObject::CreateWithRoom(ValueMemory* memory) {
  using Node = Dictionary::Node;
  void* object = Json::operator new (sizeof(JsonObject), Place{memory, kRoom * sizeof(Node)});
  // The nodes lie behind the object; they are plain memory until handed out.
  void* nodes = static_cast<char*>(object) + sizeof(JsonObject);
  return ::new (object) JsonObject(false, static_cast<Node*>(nodes), kRoom);
}

bool JsonObject::Set(const char* key, Json* value) {
  if (value == nullptr) return false;
  Dictionary::Path path(Members());
  if (key != nullptr) path.Append(key);
  value->AddRef();
  Adopt(path.End(), value);
  return true;
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
