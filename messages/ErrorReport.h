#pragma once

#include <atomic>

#include "Src/LogPrinter.h"
#include "platform/CriticalSection.h"

namespace Vask {
class IOnError;
class Json;
}  // namespace Vask

namespace Messages {

// Reports every fault of a received or sent message to the error sink, together
// with the message that is being processed. It is apart from the registrar because
// the codec reports too and the registrar uses the codec. The agent reaches it
// through the registrar.
//
// Any thread. The one instance exists before any code of the module runs and is
// never destroyed.
class ErrorReport {
 public:
  static ErrorReport& Instance() noexcept;

  // Null: reports are dropped. When this returns, another thread may still be in
  // a call to the old sink.
  void SetSink(Vask::IOnError* sink) noexcept;

  // Formats the text and calls the sink with it and the current message. Without a
  // sink nothing is formatted. A reference keeps the message alive for the call,
  // even if the thread that processes it releases it meanwhile.
  void Report(const char* format, ...) VASK_PRINTF_FORMAT(2, 3);
  void ReportV(const char* format, __builtin_va_list arguments) VASK_PRINTF_FORMAT(2, 0);

  // Sets the root object of the message that is processed from now on. It must
  // stay alive until ClearCurrentMessage has returned.
  void SetCurrentMessage(Vask::Json* root) noexcept;

  // No message is processed from now on. A report that still shows the last one
  // holds a reference of its own.
  void ClearCurrentMessage() noexcept;

 private:
  void Send(Vask::IOnError& sink, const char* text);
  Vask::Json* AddReferenceToCurrent();

  std::atomic<Vask::IOnError*> m_sink{nullptr};
  // The reader thread changes m_current for every frame without a lock. A thread
  // that reports takes its reference under the lock and sets m_reporting meanwhile.
  // A thread that clears m_current and finds m_reporting set waits for the lock, so
  // that the reference is taken before the reader releases the message.
  std::atomic<Vask::Json*> m_current{nullptr};
  std::atomic<bool> m_reporting{false};
  // Never held while the sink is called.
  Vask::Platform::CriticalSection m_reportingLock{Vask::Platform::LockRank::ErrorReport};
};

}  // namespace Messages
