#include "messages/Properties.h"

#include <cstring>
#include <string_view>

#include "json/JsonObject.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "messages/ErrorReport.h"

namespace Messages {

using Vask::FoldedKey;
using Vask::Json;
using Vask::JsonNumber;
using Vask::JsonObject;
using Vask::JsonRef;
using Vask::JsonString;
using Vask::JsonType;

bool GetStrProperty(const JsonObject& object, const FoldedKey& name, char* destination,
                    std::uint32_t maximum, bool optional) {
  ErrorReport& report = ErrorReport::Instance();
  destination[0] = '\0';
  const Json* value = object.Find(name);
  if (value == nullptr) {
    if (!optional) report.Report("GetStrProperty: Property '%s' not found", name.Text());
    return false;
  }
  if (value->Type() != JsonType::String) {
    report.Report("GetStrProperty: Property '%s' was expected to be a string (but it is not)",
                  name.Text());
    return false;
  }
  const std::string_view text = static_cast<const JsonString*>(value)->Text();
  if (text.size() > maximum) {
    report.Report("GetStrProperty: Property '%s' exceeds the max length of %u. It is %u bytes.",
                  name.Text(), maximum, static_cast<unsigned>(text.size()));
    return false;
  }
  std::memcpy(destination, text.data(), text.size());
  destination[text.size()] = '\0';
  return true;
}

bool GetIntProperty(const JsonObject& object, const FoldedKey& name, std::int32_t& destination,
                    bool optional) {
  destination = 0;
  const Json* value = object.Find(name);
  if (value == nullptr) {
    if (!optional) {
      ErrorReport::Instance().Report("GetIntProperty: Property '%s' not found", name.Text());
    }
    return false;
  }
  const bool integral =
      value->Type() == JsonType::Number && static_cast<const JsonNumber*>(value)->IsInteger();
  if (!integral) {
    ErrorReport::Instance().Report(
        "GetIntProperty: Property '%s' was expected to be an int (but it is not)", name.Text());
    return false;
  }
  destination = static_cast<std::int32_t>(
      static_cast<std::uint32_t>(static_cast<const JsonNumber*>(value)->IntValue()));
  return true;
}

bool GetFloatProperty(const JsonObject& object, const FoldedKey& name, double& destination) {
  destination = 0.0;
  const Json* value = object.Find(name);
  if (value == nullptr) {
    ErrorReport::Instance().Report("GetFloatProperty: Property '%s' not found", name.Text());
    return false;
  }
  if (value->Type() != JsonType::Number) {
    ErrorReport::Instance().Report(
        "GetFloatProperty: Property '%s' was expected to be a double (but it is not)", name.Text());
    return false;
  }
  destination = static_cast<const JsonNumber*>(value)->DoubleValue();
  return true;
}

JsonObject* GetObjProperty(const JsonObject& object, const FoldedKey& name, bool optional) {
  Json* value = object.Find(name);
  if (value == nullptr) {
    if (!optional) {
      ErrorReport::Instance().Report("GetObjProperty: Property '%s' not found", name.Text());
    }
    return nullptr;
  }
  return value->Type() == JsonType::Object ? static_cast<JsonObject*>(value) : nullptr;
}

void SetStrProperty(JsonObject& object, const char* name, const char* text) {
  const JsonRef<JsonString> value(JsonString::Create(text));
  static_cast<void>(object.Set(name, value.Get()));  // refuses only null
}

void SetIntProperty(JsonObject& object, const char* name, std::int32_t value) {
  const JsonRef<JsonNumber> number(JsonNumber::FromInt(value));
  static_cast<void>(object.Set(name, number.Get()));  // refuses only null
}

}  // namespace Messages
