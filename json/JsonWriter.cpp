#include "json/JsonWriter.h"

#include "json/JsonArray.h"
#include "json/JsonBool.h"
#include "json/JsonEscaping.h"
#include "json/JsonNumber.h"
#include "json/JsonObject.h"
#include "json/JsonString.h"

namespace Vask {

void JsonWriter::Compact(const Json& root, std::string& out) {
  JsonWriter(out, false, 0).Run(root);
}

void JsonWriter::Pretty(const Json& root, std::uint32_t indentLevel, std::string& out) {
  JsonWriter(out, true, indentLevel).Run(root);
}

void JsonWriter::Run(const Json& root) {
  m_out.clear();
  Begin(root);
  while (!m_open.empty()) {
    Open& innermost = m_open.back();
    if (innermost.next == m_members.size()) {
      End();
    } else {
      NextMember(innermost);
    }
  }
}

void JsonWriter::Begin(const Json& value) {
  switch (value.Type()) {
    case JsonType::Object:
      return BeginObject(static_cast<const JsonObject&>(value));
    case JsonType::Array:
      return BeginArray(static_cast<const JsonArray&>(value));
    case JsonType::String:
      m_out += '"';
      AppendEscaped(m_out, static_cast<const JsonString&>(value).Text());
      m_out += '"';
      return;
    case JsonType::Number:
      m_out += static_cast<const JsonNumber&>(value).Text();
      return;
    case JsonType::Bool:
      m_out += static_cast<const JsonBool&>(value).Value() ? "true" : "false";
      return;
    case JsonType::Null:
      m_out += "null";
      return;
  }
}

void JsonWriter::BeginObject(const JsonObject& object) {
  m_out += m_pretty ? "{\n" : "{";
  m_open.push_back({true, m_members.size(), m_members.size(), m_keys.size()});
  ++m_indentLevel;
  const auto collect = [](const char* key, Json* const* value, void* context) {
    auto& writer = *static_cast<JsonWriter*>(context);
    writer.m_members.push_back({*value, writer.m_keys.size()});
    writer.m_keys += key;
    writer.m_keys += '\0';
    return true;
  };
  object.Members().ForEach("", collect, this);
}

void JsonWriter::BeginArray(const JsonArray& array) {
  m_out += m_pretty ? "[\n" : "[";
  m_open.push_back({false, m_members.size(), m_members.size(), m_keys.size()});
  ++m_indentLevel;
  for (const Json* element : array) m_members.push_back({element, 0});
}

void JsonWriter::NextMember(Open& open) {
  if (open.next != open.first) m_out += m_pretty ? ",\n" : ",";
  if (m_pretty) Indent();
  const Member member = m_members[open.next++];
  if (open.isObject) WriteKey(&m_keys[member.key]);
  Begin(*member.value);
}

void JsonWriter::WriteKey(const char* key) {
  m_out += '"';
  if (m_pretty) {
    m_out += key;
    m_out += "\": ";
  } else {
    AppendEscaped(m_out, key);
    m_out += "\":";
  }
}

void JsonWriter::End() {
  const Open closed = m_open.back();
  m_open.pop_back();
  m_members.resize(closed.first);
  m_keys.resize(closed.keys);
  --m_indentLevel;
  if (m_pretty) {
    m_out += '\n';
    Indent();
  }
  m_out += closed.isObject ? '}' : ']';
}

void JsonWriter::Indent() {
  m_out.append(2 * m_indentLevel, ' ');
}

}  // namespace Vask
