#pragma once

namespace Vask {

// Receives the body of every whole frame, on the link's reader thread.
class IOnJsonMessageText {
 public:
  // `text` is NUL-terminated and lent for the call. The answer says whether the
  // message was understood; the link does not care.
  virtual bool OnJsonMessageText(const char* text) = 0;

 protected:
  ~IOnJsonMessageText() = default;
};

}  // namespace Vask
