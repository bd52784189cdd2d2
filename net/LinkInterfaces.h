#pragma once

namespace Vask {

class Json;

// The interfaces between the link and the rest of the agent. The link calls the first
// two and implements the third.

// Receives the events of the connection to the peer. The link calls every operation on
// its reader thread, without any lock, and reads nothing until it returns. An exception
// of OnConnecting or OnConnected ends the attempt or the connection; the others must not
// throw.
class IJsonSocketEvents {
 public:
  virtual void OnConnecting() = 0;     // before every attempt to connect
  virtual void OnConnectFailed() = 0;  // after every failed attempt
  virtual void OnConnected() = 0;      // after a successful one
  virtual void OnDisconnected() = 0;   // when an established connection is lost

 protected:
  ~IJsonSocketEvents() = default;
};

// Receives the body of every complete frame, on the link's reader thread.
class IOnJsonMessageText {
 public:
  // `text` is NUL-terminated and lent for the call. Returns whether the message was
  // understood; the link ignores the result.
  virtual bool OnJsonMessageText(const char* text) = 0;

 protected:
  ~IOnJsonMessageText() = default;
};

// Passes JSON values on. Any thread may call it.
class IOnJsonMessage {
 public:
  // Returns true if the whole message was passed on, and false for null. The caller
  // keeps its reference to the message.
  virtual bool OnJsonMessage(Json* message) = 0;

 protected:
  ~IOnJsonMessage() = default;
};

}  // namespace Vask
