#include <rapidjson/document.h>

#include "benchmarks/messages/PeerDecoders.h"
#include "messages/Catalogue.h"

namespace Messages::Benchmarks {

namespace {

using Value = rapidjson::Value;

std::string_view TextOf(const Value& value) {
  return {value.GetString(), value.GetStringLength()};
}

// The library keeps members in an array, so this is its own search with another
// comparison.
const Value* Find(const Value& object, std::string_view key) {
  for (auto member = object.MemberBegin(); member != object.MemberEnd(); ++member) {
    if (Vask::EqualsIgnoringCase(TextOf(member->name), key)) return &member->value;
  }
  return nullptr;
}

const Value* FindObject(const Value& object, std::string_view key) {
  const Value* value = Find(object, key);
  return value != nullptr && value->IsObject() ? value : nullptr;
}

bool GetText(const Value& object, std::string_view key, char* destination, std::size_t maximum) {
  const Value* value = Find(object, key);
  return value != nullptr && value->IsString() && CopyText(TextOf(*value), destination, maximum);
}

bool GetCount(const Value& object, std::string_view key, std::int32_t& destination) {
  const Value* value = Find(object, key);
  if (value == nullptr || !value->IsInt64()) return false;
  destination = static_cast<std::int32_t>(value->GetInt64());
  return destination >= 0 && destination <= 1024;
}

bool DecodeBody(const Value& data, SNMPmessage& message) {
  const Value* type = FindObject(data, "messageType");
  if (type == nullptr) return false;
  auto& choice = message.m_messageType;
  if (const Value* product = FindObject(*type, "Product")) {
    choice.m_tag = SNMPmessage::kProduct;
    return GetText(*product, "Name", choice.m_Product.m_Name, 128) &&
           GetText(*product, "Version", choice.m_Product.m_Version, 64);
  }
  if (const Value* streams = FindObject(*type, "Streams")) {
    choice.m_tag = SNMPmessage::kStreams;
    return GetCount(*streams, "Count", choice.m_Streams.m_Count) &&
           GetCount(*streams, "Errors", choice.m_Streams.m_Errors);
  }
  if (const Value* monitors = FindObject(*type, "StreamMonitors")) {
    choice.m_tag = SNMPmessage::kStreamMonitors;
    return GetCount(*monitors, "Count", choice.m_StreamMonitors.m_Count) &&
           GetCount(*monitors, "Errors", choice.m_StreamMonitors.m_Errors) &&
           GetCount(*monitors, "Silence", choice.m_StreamMonitors.m_Silence);
  }
  if (const Value* sources = FindObject(*type, "AudioSources")) {
    choice.m_tag = SNMPmessage::kAudioSources;
    return GetCount(*sources, "Count", choice.m_AudioSources.m_Count) &&
           GetCount(*sources, "Errors", choice.m_AudioSources.m_Errors) &&
           GetCount(*sources, "Silence", choice.m_AudioSources.m_Silence);
  }
  return false;
}

}  // namespace

bool DecodeWithRapidJson(const char* text, SNMPmessage& message, std::int32_t& id) {
  rapidjson::Document root;
  root.Parse(text);
  if (root.HasParseError() || !root.IsObject()) return false;
  const Value* number = Find(root, "id");
  id = number != nullptr && number->IsInt64() ? static_cast<std::int32_t>(number->GetInt64()) : 0;
  const Value* name = Find(root, "name");
  if (name == nullptr || !name->IsString()) return false;
  const Value* data = FindObject(root, "data");
  if (data == nullptr) return false;
  if (FindInCatalogue(TextOf(*name)) != kCatalogueIndex<SNMPmessage>) return false;
  return DecodeBody(*data, message);
}

}  // namespace Messages::Benchmarks
