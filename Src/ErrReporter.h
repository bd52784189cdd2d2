#pragma once

#include "Src/LogPrinter.h"

namespace Vask {

class Json;

// Receives faults of received messages and of the link. It is called on the thread
// that met the fault, possibly under locks of the caller. An implementation may log
// and must not call back into its caller.
class IOnError {
 public:
  virtual ~IOnError() = default;

  // `message` is the root object of the message that is being processed, or null.
  // `text` is NUL-terminated and has no line end. Both are lent for the call.
  virtual void OnError(Json* message, const char* text) = 0;

  // The longest text that Report passes on, its terminating zero included. A longer
  // one is cut.
  static constexpr unsigned kReportCapacity = 256;

  // Formats a text printf-style, without allocating, and calls the sink's OnError with
  // it and no message. Does nothing if `sink` is null. Any thread may call it.
  static void Report(IOnError* sink, const char* format, ...) VASK_PRINTF_FORMAT(2, 3);
};

// Turns every reported fault into one error line of the log. It has no state; any
// thread may use it.
class ErrReporter final : public IOnError {
 public:
  void OnError(Json* message, const char* text) override;
};

}  // namespace Vask
