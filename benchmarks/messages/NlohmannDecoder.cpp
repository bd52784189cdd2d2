#include <nlohmann/json.hpp>
#include <string>

#include "benchmarks/messages/PeerDecoders.h"
#include "messages/Catalogue.h"

namespace Messages::Benchmarks {

namespace {

using Value = nlohmann::json;

// Tries the map's own search first, because it is fast for a member in the protocol's
// spelling.
const Value* Find(const Value& object, const char* key) {
  const auto exact = object.find(key);
  if (exact != object.end()) return &*exact;
  for (auto member = object.begin(); member != object.end(); ++member) {
    if (Vask::EqualsIgnoringCase(member.key(), key)) return &*member;
  }
  return nullptr;
}

const Value* FindObject(const Value& object, const char* key) {
  const Value* value = Find(object, key);
  return value != nullptr && value->is_object() ? value : nullptr;
}

bool GetText(const Value& object, const char* key, char* destination, std::size_t maximum) {
  const Value* value = Find(object, key);
  return value != nullptr && value->is_string() &&
         CopyText(value->get_ref<const std::string&>(), destination, maximum);
}

bool GetCount(const Value& object, const char* key, std::int32_t& destination) {
  const Value* value = Find(object, key);
  if (value == nullptr || !value->is_number_integer()) return false;
  destination = static_cast<std::int32_t>(value->get<std::int64_t>());
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

bool DecodeWithNlohmann(const char* text, SNMPmessage& message, std::int32_t& id) {
  const Value root = Value::parse(text, nullptr, false);
  if (!root.is_object()) return false;
  const Value* number = Find(root, "id");
  id = number != nullptr && number->is_number_integer()
           ? static_cast<std::int32_t>(number->get<std::int64_t>())
           : 0;
  const Value* name = Find(root, "name");
  if (name == nullptr || !name->is_string()) return false;
  const Value* data = FindObject(root, "data");
  if (data == nullptr) return false;
  if (FindInCatalogue(name->get_ref<const std::string&>()) != kCatalogueIndex<SNMPmessage>) {
    return false;
  }
  return DecodeBody(*data, message);
}

}  // namespace Messages::Benchmarks
