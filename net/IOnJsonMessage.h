#pragma once

namespace Vask {

class Json;

// Takes JSON values that are to be passed on, from any thread.
class IOnJsonMessage {
 public:
  // True when the message was passed on in full. The message stays the
  // caller's; null is refused.
  virtual bool OnJsonMessage(Json* message) = 0;

 protected:
  ~IOnJsonMessage() = default;
};

}  // namespace Vask
