#include "json/Json.h"

#include "json/JsonArray.h"
#include "json/JsonObject.h"

namespace Vask {

constinit Json::Counter Json::s_constructed{0};
constinit Json::Counter Json::s_destroyed{0};

inline Json* Json::ReleaseChildren(Json* value, ValueMemory::Returns& returns) noexcept {
  switch (value->m_type) {
    case JsonType::Object:
      return static_cast<JsonObject*>(value)->ReleaseMembers(returns);
    case JsonType::Array:
      return static_cast<JsonArray*>(value)->ReleaseElements(returns);
    default:
      return nullptr;
  }
}

void Json::operator delete(Json* value, std::destroying_delete_t) noexcept {
  ValueMemory::Returns returns;
  value->m_around = nullptr;
  while (value != nullptr) {
    if (Json* child = ReleaseChildren(value, returns)) {
      child->m_around = value;
      value = child;
      continue;
    }
    Json* around = value->m_around;
    value->~Json();
    returns.Add(value);
    value = around;
  }
}

}  // namespace Vask
