#pragma once

namespace Vask {

class Json;

// Receives faults of received messages and of the link. Called on the thread
// that met the fault, with no promise about locks: an implementation may log
// and must not call back into whoever reports.
class IOnError {
 public:
  virtual ~IOnError() = default;

  // `message` is the root object of the message that is being processed, or
  // null; it is only lent for the call. `text` is NUL-terminated, has no line
  // end, and is only lent too.
  virtual void OnError(Json* message, const char* text) = 0;
};

}  // namespace Vask
