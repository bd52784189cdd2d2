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

// Receives one message: the record, lent for the call; the envelope's id; the
// subscription's context, which is null. Called on the thread that received the
// message, with the registrar's lock held: a handler may log, send, subscribe
// and unsubscribe, and must not wait for a thread that does any of the last two.
template <class M>
using Handler = void (*)(const M& record, std::int32_t id, void* context);

// The meeting point between the link and the rest of the agent. Received texts
// are parsed, their envelope checked, their body decoded and handed to whoever
// subscribed that type of message; the agent's own messages are put into their
// envelope and given to the link.
//
// Every operation may be called from any thread, also from within a handler.
// Text comes from one thread, the link's reader; the handlers run there. Sending
// takes no lock.
class Registrar final : public Vask::IOnJsonMessageText,
                        public Vask::Thread::SingletonRef<Registrar> {
 public:
  Registrar(const Registrar&) = delete;
  Registrar& operator=(const Registrar&) = delete;

  // The three ends to be wired. Each may change at any time; a call to the old
  // sink or sender may still be under way on another thread afterwards.
  // Null: faults are dropped without formatting.
  void SetErrorSink(Vask::IOnError* sink) noexcept;
  // Null: messages are built and not sent.
  void SetSender(Vask::IOnJsonMessage* sender) noexcept;
  // The "from" of everything sent from now on; copied. Empty at first. Every change
  // keeps its text for the registrar's lifetime, since senders read it without a lock.
  void SetFrom(const char* from);

  // Adds the handler at the end of its type's list; a handler that is already
  // there moves to the end. What that means during a dispatch stands in
  // messages/HandlerList.h.
  template <class M>
  void Subscribe(Handler<M> handler) {
    SubscribeAt(kCatalogueIndex<M>, reinterpret_cast<HandlerList::Function>(handler));
  }

  // Removes the handler; nothing if it is not subscribed. When this returns on a
  // thread that is not dispatching, no call to it is under way any more.
  template <class M>
  void Unsubscribe(Handler<M> handler) {
    UnsubscribeAt(kCatalogueIndex<M>, reinterpret_cast<HandlerList::Function>(handler));
  }

  // Calls every handler of the type in order, under the lock.
  template <class M>
  void Dispatch(const M& record, std::int32_t id) {
    DispatchAt(kCatalogueIndex<M>, &record, id, &Invoke<M>);
  }

  // One received text. True when it was processed or, being of no interest,
  // skipped; false after a fault, which has been reported.
  bool OnJsonMessageText(const char* text) override;

  // The same for a parsed value, which stays the caller's. Null is no object.
  bool OnJsonMessage(Vask::Json* root);

  // printf-style. The sink gets the text together with the message that is being
  // processed, or null.
  void ReportError(const char* format, ...) VASK_PRINTF_FORMAT(2, 3);

  // Build the message and hand it to the sender, if there is one. True when the
  // message could be built, whatever became of it; a trap without a type cannot,
  // nor can any without memory, which is reported as
  // "Messages::Registrar::Send: No memory for a message '%s'".
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
  Vask::ValueMemory m_memory;              // of the values of the text; for its thread alone
  Vask::Platform::CriticalSection m_lock{Vask::Platform::LockRank::Registrar};
  HandlerList m_lists[kCatalogueSize] VASK_GUARDED_BY(m_lock);
};

}  // namespace Messages
