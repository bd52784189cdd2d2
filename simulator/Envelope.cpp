#include "simulator/Envelope.h"

#include "json/Json.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "simulator/Text.h"

namespace Simulator {

std::string WriteEnvelope(std::string_view name, std::string_view data) {
  return "{\"data\":" + std::string(data) +
         ",\"from\":\"Corvane\",\"id\":0,\"name\":" + Quoted(name) + ",\"op\":\"broadcast\"}";
}

Message ReadEnvelope(const std::string& text) {
  Message noEnvelope{"", text};
  Vask::ParseResult result;
  const Vask::JsonRef<Vask::Json> root(Vask::Parse(result, text.c_str()));
  if (!root || root->Type() != Vask::JsonType::Object) return noEnvelope;
  const auto& envelope = static_cast<const Vask::JsonObject&>(*root);
  const Vask::Json* const name = envelope.Find("name");
  const Vask::Json* const data = envelope.Find("data");
  if (name == nullptr || name->Type() != Vask::JsonType::String || data == nullptr) {
    return noEnvelope;
  }
  Message message;
  message.name = static_cast<const Vask::JsonString*>(name)->Text();
  data->Write(message.data);
  return message;
}

}  // namespace Simulator
