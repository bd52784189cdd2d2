#include "messages/Codec.h"

#include <string>
#include <vector>

#include "json/JsonObject.h"
#include "json/JsonRef.h"
#include "messages/ErrorReport.h"
#include "messages/Properties.h"

namespace Messages {

using Vask::JsonObject;
using Vask::JsonRef;

namespace {

// The tables return addresses for writing. The encoder only reads there.
void* Writable(const void* constant) {
  return const_cast<void*>(constant);
}

// "greater than" and "less than" are the protocol's words, although both bounds are
// allowed.
bool CheckRange(const RecordTable& table, const Field& field, std::int32_t value) {
  if (field.range.hasLower && value < field.range.lower) {
    ErrorReport::Instance().Report("%s: m_%s expected to be greater than %d. It is %d.",
                                   table.decoder, field.name.Text(), field.range.lower, value);
    return false;
  }
  if (field.range.hasUpper && value > field.range.upper) {
    ErrorReport::Instance().Report("%s: m_%s expected to be less than %d. It is %d.", table.decoder,
                                   field.name.Text(), field.range.upper, value);
    return false;
  }
  return true;
}

bool DecodeInteger(const JsonObject& object, const RecordTable& table, const Field& field,
                   void* member) {
  auto& value = *static_cast<std::int32_t*>(member);
  return GetIntProperty(object, field.name, value, table.presence == Presence::Optional) &&
         CheckRange(table, field, value);
}

// Destroys an object whose decode fails, also if it fails because memory runs out.
class Unfinished {
 public:
  Unfinished(void (*destroy)(void*), void* object) : m_destroy(destroy), m_object(object) {}
  ~Unfinished() {
    if (m_object != nullptr) m_destroy(m_object);
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  void Keep() { m_object = nullptr; }

 private:
  void (*const m_destroy)(void*);
  void* m_object;
};

// Returns false only for a member that is no object. A faulty element is dropped,
// because one bad entry must not hide the others.
bool DecodeElement(const JsonObject& elements, const char* key, const Field& field, void* list) {
  const JsonObject* body = GetObjProperty(elements, key, false);
  if (body == nullptr) return false;
  void* element = field.list->create();
  Unfinished unfinished(field.list->destroy, element);
  if (DecodeRecord(*body, *field.record, element) && field.list->insert(list, key, element)) {
    unfinished.Keep();
  }
  return true;
}

bool DecodeList(const JsonObject& elements, const Field& field, void* list) {
  std::vector<std::string> keys;
  const auto collect = [](const char* key, auto, void* collected) {
    static_cast<std::vector<std::string>*>(collected)->emplace_back(key);
    return true;
  };
  elements.Members().ForEach("", collect, &keys);
  for (const std::string& key : keys) {
    if (!DecodeElement(elements, key.c_str(), field, list)) return false;
  }
  return true;
}

// The first alternative that is present as an object decides alone.
bool DecodeUnion(const JsonObject& object, const UnionTable& table, void* choice) {
  std::uint32_t& tag = *table.tag(choice);
  for (std::uint32_t i = 0; i < table.count; ++i) {
    const Alternative& alternative = table.alternatives[i];
    const JsonObject* body = GetObjProperty(object, alternative.name, true);
    if (body == nullptr) continue;
    if (alternative.record != nullptr) {
      void* member = alternative.member(choice);
      alternative.construct(member);
      Unfinished unfinished(alternative.destroy, member);
      if (!DecodeRecord(*body, *alternative.record, member)) return false;
      unfinished.Keep();
    }
    tag = alternative.tag;
    return true;
  }
  return false;
}

bool DecodeNested(const JsonObject& object, const Field& field, void* member) {
  const JsonObject* nested = GetObjProperty(object, field.name, false);
  if (nested == nullptr) return false;
  switch (field.kind) {
    case FieldKind::List:
      return DecodeList(*nested, field, member);
    case FieldKind::Union:
      return DecodeUnion(*nested, *field.choice, member);
    default:
      return DecodeRecord(*nested, *field.record, member);
  }
}

bool DecodeField(const JsonObject& object, const RecordTable& table, const Field& field,
                 void* member) {
  switch (field.kind) {
    case FieldKind::Text:
      return GetStrProperty(object, field.name, static_cast<char*>(member), field.capacity,
                            table.presence == Presence::Optional);
    case FieldKind::Integer:
      return DecodeInteger(object, table, field, member);
    case FieldKind::Real:
      return GetFloatProperty(object, field.name, *static_cast<double*>(member));
    default:
      return DecodeNested(object, field, member);
  }
}

void ReportTag(const char* routine, const UnionTable& table, std::uint32_t tag) {
  ErrorReport::Instance().Report("%s_%s: Union tag not understood for '%s' (tag=%d)", routine,
                                 table.key, table.path, static_cast<int>(tag));
}

JsonObject* EncodeNested(const Field& field, void* member) {
  return field.kind == FieldKind::Union ? EncodeUnion(*field.choice, member)
                                        : EncodeRecord(*field.record, member);
}

bool EncodeField(JsonObject& object, const Field& field, void* member) {
  switch (field.kind) {
    case FieldKind::Text:
      SetStrProperty(object, field.name.Text(), static_cast<const char*>(member));
      return true;
    case FieldKind::Integer:
      SetIntProperty(object, field.name.Text(), *static_cast<const std::int32_t*>(member));
      return true;
    default:
      const JsonRef<JsonObject> nested(EncodeNested(field, member));
      return object.Set(field.name.Text(), nested.Get());
  }
}

}  // namespace

bool DecodeRecord(const JsonObject& object, const RecordTable& table, void* record) {
  for (std::size_t i = 0; i < table.count; ++i) {
    const Field& field = table.fields[i];
    const bool decoded = DecodeField(object, table, field, field.member(record));
    if (!decoded && table.presence == Presence::Required) return false;
  }
  return true;
}

JsonObject* EncodeRecord(const RecordTable& table, const void* record) {
  JsonRef<JsonObject> object(new JsonObject());
  for (std::size_t i = 0; i < table.count; ++i) {
    const Field& field = table.fields[i];
    if (!EncodeField(*object, field, field.member(Writable(record)))) return nullptr;
  }
  return object.Detach();
}

JsonObject* EncodeUnion(const UnionTable& table, const void* choice) {
  const std::uint32_t tag = *table.tag(Writable(choice));
  if (tag >= table.count) {
    ReportTag("EncodeUnion", table, tag);
    return nullptr;
  }
  JsonRef<JsonObject> object(new JsonObject());
  const Alternative& alternative = table.alternatives[tag];
  const JsonRef<JsonObject> body(
      alternative.record != nullptr
          ? EncodeRecord(*alternative.record, alternative.member(Writable(choice)))
          : new JsonObject());
  return object->Set(alternative.name.Text(), body.Get()) ? object.Detach() : nullptr;
}

void DestroyUnion(const UnionTable& table, void* choice) {
  std::uint32_t& tag = *table.tag(choice);
  if (tag < table.count) {
    const Alternative& alternative = table.alternatives[tag];
    if (alternative.record != nullptr) alternative.destroy(alternative.member(choice));
  } else if (tag != table.count) {
    ReportTag("DestroyUnion", table, tag);
  }
  tag = table.count;
}

}  // namespace Messages
