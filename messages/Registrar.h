#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Src/LogPrinter.h"
#include "Src/SingletonRef.h"
#include "json/ValueMemory.h"
#include "messages/Catalogue.h"
#include "messages/HandlerList.h"
#include "net/LinkInterfaces.h"
#include "platform/CriticalSection.h"

namespace Vask {
class IOnError;
class IOnJsonMessage;
class Json;
class JsonObject;
}  // namespace Vask

namespace Messages {

struct SNMPtrap;

// Receives one message: the record, which is valid during the call; the envelope's
// id; the context of the subscription, which is null. The thread that received the
// message calls it and holds the registrar's lock. A handler may log, send, subscribe
// and unsubscribe. It must not wait for a thread that subscribes or unsubscribes.
template <class M>
using Handler = void (*)(const M& record, std::int32_t id, void* context);

// Connects the link with the rest of the agent. It parses received texts, checks
// their envelope, decodes their body and calls the handlers of that type of message.
// It puts the agent's own messages into their envelope and passes them to the link.
//
// Any thread may call every operation, also from within a handler, except that texts
// come from one thread, the link's reader. The handlers run on it. Sending takes no
// lock.
class Registrar final : public Vask::IOnJsonMessageText,
                        public Vask::Thread::SingletonRef<Registrar> {
 public:
  Registrar(const Registrar&) = delete;
  Registrar& operator=(const Registrar&) = delete;

  // Each of these three may change at any time. Afterwards another thread may
  // still be in a call to the old sink or sender.
  // Null: faults are dropped without formatting.
  void SetErrorSink(Vask::IOnError* sink) noexcept;
  // Null: messages are built and not sent.
  void SetSender(Vask::IOnJsonMessage* sender) noexcept;
  // The "from" of every message sent from now on; copied. Empty at first. Each text
  // stays for the registrar's lifetime, because senders read it without a lock.
  void SetFrom(const char* from);

  // Adds the handler at the end of its type's list; a handler that is already
  // there moves to the end. For the effect during a dispatch see
  // messages/HandlerList.h.
  template <class M>
  void Subscribe(Handler<M> handler) {
    SubscribeAt(kCatalogueIndex<M>, reinterpret_cast<HandlerList::Function>(handler));
  }

  // Removes the handler, if it is subscribed. When this returns on a thread that is
  // not dispatching, no call to the handler is under way any more.
  template <class M>
  void Unsubscribe(Handler<M> handler) {
    UnsubscribeAt(kCatalogueIndex<M>, reinterpret_cast<HandlerList::Function>(handler));
  }

  // Calls every handler of the type in order, under the lock.
  template <class M>
  void Dispatch(const M& record, std::int32_t id) {
    DispatchAt(kCatalogueIndex<M>, &record, id, &Invoke<M>);
  }

  // Processes one received text. Returns true also for a message that is unknown or
  // has no subscriber; false after a fault, which has been reported.
  bool OnJsonMessageText(const char* text) override;

  // The same for a parsed value, which the caller still owns. Null is no object.
  bool OnJsonMessage(Vask::Json* root);

  // printf-style. Calls the sink with the text and the message that is being
  // processed, or null.
  void ReportError(const char* format, ...) VASK_PRINTF_FORMAT(2, 3);

  // Build the message and pass it to the sender, if there is one. They return true
  // if the message could be built; the sender's result is ignored. They fail, after
  // a report, for a trap without a type and if there is no memory
  // ("Messages::Registrar::Send: No memory for a message '%s'").
  bool SendSNMPupdate();
  bool SendSNMPtrap(const SNMPtrap& trap);

 private:
  friend class Vask::Thread::SingletonRef<Registrar>;
  struct FromText;

  Registrar() = default;
  ~Registrar();

  template <class M>
  static void Invoke(HandlerList::Function handler, const void* record, std::int32_t id,
                     void* context) {
    reinterpret_cast<Handler<M>>(handler)(*static_cast<const M*>(record), id, context);
  }

  void SubscribeAt(std::size_t index, HandlerList::Function handler) VASK_EXCLUDES(m_lock);
  void UnsubscribeAt(std::size_t index, HandlerList::Function handler);
  void DispatchAt(std::size_t index, const void* record, std::int32_t id,
                  HandlerList::Invoke invoke);

  [[nodiscard]] bool HasSubscribers(std::size_t index) const noexcept
      VASK_NO_THREAD_SAFETY_ANALYSIS;  // the count is atomic
  bool Process(const Vask::JsonObject& message);
  [[nodiscard]] const char* From() const noexcept;
  template <class Build>
  bool BuildAndSend(const char* name, Build build);
  bool Send(const char* name, Vask::JsonObject* data);

  std::atomic<Vask::IOnJsonMessage*> m_sender{nullptr};
  std::atomic<FromText*> m_from{nullptr};  // newest first
  Vask::ValueMemory m_memory;              // of the text's values; the reader thread's
  Vask::Platform::CriticalSection m_lock{Vask::Platform::LockRank::Registrar};
  HandlerList m_lists[kCatalogueSize] VASK_GUARDED_BY(m_lock);
};

}  // namespace Messages
