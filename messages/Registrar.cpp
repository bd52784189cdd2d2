#include "messages/Registrar.h"

#include <cstdarg>
#include <new>
#include <string>

#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "messages/ErrorReport.h"
#include "messages/GlobalOptions.h"
#include "messages/GlobalOptions2.h"
#include "messages/Processes.h"
#include "messages/Properties.h"
#include "messages/SNMPmessage.h"
#include "messages/SNMPtrap.h"
#include "net/LinkInterfaces.h"

namespace Messages {

using Vask::Json;
using Vask::JsonObject;
using Vask::JsonRef;
using Vask::Platform::CriticalSectionLock;

// Each text stays until the registrar is destroyed, so that a sender may read it
// without a lock.
struct Registrar::FromText {
  std::string text;
  FromText* older;
};

namespace {

// The envelope.
constexpr Vask::FoldedKey kId("id");
constexpr Vask::FoldedKey kName("name");
constexpr Vask::FoldedKey kData("data");

// Makes the root the current message for a scope, which ends before the root's owner
// releases it.
class CurrentMessage {
 public:
  explicit CurrentMessage(Json* root) { ErrorReport::Instance().SetCurrentMessage(root); }
  ~CurrentMessage() { ErrorReport::Instance().ClearCurrentMessage(); }
  CurrentMessage(const CurrentMessage&) = delete;
  CurrentMessage& operator=(const CurrentMessage&) = delete;
};

// Decodes a body into a record on the stack and calls the handlers with it.
using Deliver = bool (*)(Registrar& registrar, const JsonObject& data, std::int32_t id);

template <class M, bool (*DecodeM)(const JsonObject&, M&)>
bool DeliverAs(Registrar& registrar, const JsonObject& data, std::int32_t id) {
  M record;
  if (!DecodeM(data, record)) return false;
  registrar.Dispatch(record, id);
  return true;
}

// The decoder of every message without fields.
template <class M>
bool AcceptAny(const JsonObject& /*data*/, M& /*record*/) {
  return true;
}

constexpr Deliver kDeliver[] = {
#define MESSAGES_DECODER_RECORD(name) DecodeStruct_##name
#define MESSAGES_DECODER_FIELDLESS(name) AcceptAny<name>
#define MESSAGES_DELIVER(name, body, role) &DeliverAs<name, MESSAGES_DECODER_##body(name)>,
    MESSAGES_CATALOGUE(MESSAGES_DELIVER)
#undef MESSAGES_DELIVER
#undef MESSAGES_DECODER_FIELDLESS
#undef MESSAGES_DECODER_RECORD
};

}  // namespace

Registrar::~Registrar() {
  for (FromText* text = m_from.load(); text != nullptr;) {
    FromText* older = text->older;
    delete text;
    text = older;
  }
}

void Registrar::SetErrorSink(Vask::IOnError* sink) noexcept {
  ErrorReport::Instance().SetSink(sink);
}

void Registrar::SetSender(Vask::IOnJsonMessage* sender) noexcept {
  m_sender.store(sender, std::memory_order_release);
}

void Registrar::SetFrom(const char* from) {
  const CriticalSectionLock lock(m_lock);
  FromText* newest = m_from.load(std::memory_order_relaxed);
  if (From() == std::string_view(from)) return;
  m_from.store(new FromText{from, newest}, std::memory_order_release);
}

const char* Registrar::From() const noexcept {
  const FromText* newest = m_from.load(std::memory_order_acquire);
  return newest != nullptr ? newest->text.c_str() : "";
}

void Registrar::SubscribeAt(std::size_t index, HandlerList::Function handler) {
  const CriticalSectionLock lock(m_lock);
  m_lists[index].Subscribe(handler);
}

void Registrar::UnsubscribeAt(std::size_t index, HandlerList::Function handler) {
  const CriticalSectionLock lock(m_lock);
  m_lists[index].Unsubscribe(handler);
}

void Registrar::DispatchAt(std::size_t index, const void* record, std::int32_t id,
                           HandlerList::Invoke invoke) {
  const CriticalSectionLock lock(m_lock);
  m_lists[index].Dispatch(record, id, invoke);
}

bool Registrar::HasSubscribers(std::size_t index) const noexcept {
  return !m_lists[index].Empty();
}

void Registrar::ReportError(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  ErrorReport::Instance().ReportV(format, arguments);
  va_end(arguments);
}

bool Registrar::OnJsonMessageText(const char* text) {
  ErrorReport::Instance().ClearCurrentMessage();
  Vask::ParseResult result;
  const JsonRef<Json> root(Vask::Parse(result, text, m_memory));
  if (root.Get() == nullptr) {
    ReportError("Messages::Registrar::OnJsonMessageText: JSON parse failed at line %u, col %u: %s",
                result.line, result.column, result.errorMessage.c_str());
    return false;
  }
  return OnJsonMessage(root.Get());
}

bool Registrar::OnJsonMessage(Json* root) {
  if (root == nullptr || root->Type() != Vask::JsonType::Object) {
    ErrorReport::Instance().ClearCurrentMessage();
    ReportError(
        "Messages::Registrar::OnJsonMessage: The parsed JSON message has the wrong type "
        "(expected 'object')");
    return false;
  }
  const CurrentMessage current(root);
  return Process(static_cast<const JsonObject&>(*root));
}

bool Registrar::Process(const JsonObject& message) {
  std::int32_t id = 0;
  static_cast<void>(GetIntProperty(message, kId, id, true));  // id is 0 on failure

  const Json* name = message.Find(kName);
  if (name == nullptr) {
    ReportError("Messages::Registrar::OnJsonMessage: Received message missing the 'name' property");
    return false;
  }
  if (name->Type() != Vask::JsonType::String) {
    ReportError(
        "Messages::Registrar::OnJsonMessage: The 'name' property has the wrong type "
        "(expected 'string')");
    return false;
  }
  const JsonObject* data = GetObjProperty(message, kData, false);
  if (data == nullptr) {
    ReportError(
        "Messages::Registrar::OnJsonMessage: The 'data' has the wrong type (expected 'object')");
    return false;
  }

  const std::size_t index = FindInCatalogue(static_cast<const Vask::JsonString*>(name)->Text());
  if (index == kCatalogueSize || !HasSubscribers(index)) return true;
  return kDeliver[index](*this, *data, id);
}

bool Registrar::SendSNMPupdate() {
  return BuildAndSend("SNMPupdate", [] { return new JsonObject(); });
}

bool Registrar::SendSNMPtrap(const SNMPtrap& trap) {
  return BuildAndSend("SNMPtrap", [&] { return EncodeStruct_SNMPtrap(trap); });
}

// Without memory only the message is lost; the caller continues.
template <class Build>
bool Registrar::BuildAndSend(const char* name, Build build) {
  try {
    return Send(name, build());
  } catch (const std::bad_alloc&) {
    ReportError("Messages::Registrar::Send: No memory for a message '%s'", name);
    return false;
  }
}

// Takes over the caller's reference to `data`. Null is a body that could not be built.
bool Registrar::Send(const char* name, JsonObject* data) {
  const JsonRef<JsonObject> body(data);
  if (data == nullptr) return false;

  const JsonRef<JsonObject> envelope(new JsonObject());
  SetStrProperty(*envelope, "from", From());
  SetIntProperty(*envelope, "id", 0);
  SetStrProperty(*envelope, "op", "broadcast");
  SetStrProperty(*envelope, "name", name);
  static_cast<void>(envelope->Set("data", data));  // refuses only null

  Vask::IOnJsonMessage* sender = m_sender.load(std::memory_order_acquire);
  if (sender != nullptr) static_cast<void>(sender->OnJsonMessage(envelope.Get()));
  return true;
}

}  // namespace Messages
