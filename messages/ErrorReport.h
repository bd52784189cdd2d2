#pragma once

#include <atomic>

#include "Src/LogPrinter.h"
#include "platform/CriticalSection.h"

namespace Vask {
class IOnError;
class Json;
}  // namespace Vask

namespace Messages {

// Where every fault of a received or sent message goes: the error sink, and the
// message that is being processed meanwhile. It stands below the codec and the
// registrar, since both report and the registrar uses the codec; the agent
// reaches it through the registrar.
//
// Every operation may be called from any thread. The one instance is there
// before any code of the module runs and is never destroyed.
class ErrorReport {
 public:
  static ErrorReport& Instance() noexcept;

  // Null drops reports from now on. A call to the old sink may still be under
  // way on another thread when this returns.
  void SetSink(Vask::IOnError* sink) noexcept;

  // Formats the text and hands it to the sink, together with the current
  // message. Without a sink nothing is formatted. The message stays alive
  // for the call, even if the thread that processes it lets go of it meanwhile.
  void Report(const char* format, ...) VASK_PRINTF_FORMAT(2, 3);
  void ReportV(const char* format, __builtin_va_list arguments) VASK_PRINTF_FORMAT(2, 0);

  // The root object of the message that is processed from now on. It must stay
  // alive until ClearCurrentMessage has returned.
  void SetCurrentMessage(Vask::Json* root) noexcept;

  // No message is processed from now on. Reports that still show the last one
  // hold a reference of their own.
  void ClearCurrentMessage() noexcept;

 private:
  void Send(Vask::IOnError& sink, const char* text);
  Vask::Json* AddReferenceToCurrent();

  std::atomic<Vask::IOnError*> m_sink{nullptr};
  // Whoever processes a message changes m_current for every frame, without a
  // lock; whoever reports says so in m_reporting while it takes a reference, and
  // holds the lock then. The one that clears m_current and meets a reporter waits
  // for the lock, so that the reference is taken before it gives up its own.
  std::atomic<Vask::Json*> m_current{nullptr};
  std::atomic<bool> m_reporting{false};
  // Never held during a call.
  Vask::Platform::CriticalSection m_reportingLock{Vask::Platform::LockRank::ErrorReport};
};

}  // namespace Messages
