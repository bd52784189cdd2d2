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

  // The root object of the message that is processed from now on, or null. Its
  // owner sets null here before it gives up its own reference.
  void SetCurrentMessage(Vask::Json* root) noexcept;

 private:
  void Send(Vask::IOnError& sink, const char* text);

  std::atomic<Vask::IOnError*> m_sink{nullptr};
  // Held for a pointer's reading or writing only, never during a call.
  Vask::Platform::CriticalSection m_currentLock;
  Vask::Json* m_current VASK_GUARDED_BY(m_currentLock) = nullptr;
};

}  // namespace Messages
