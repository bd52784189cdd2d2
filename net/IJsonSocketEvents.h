#pragma once

namespace Vask {

// Hears how the link to the peer comes and goes. Every operation is called on
// the link's reader thread, without any lock, and may take its time: nothing is
// read meanwhile. An exception of OnConnected ends the connection; the others
// must not throw.
class IJsonSocketEvents {
 public:
  virtual void OnConnecting() = 0;     // before every attempt to connect
  virtual void OnConnectFailed() = 0;  // after every failed attempt
  virtual void OnConnected() = 0;      // once a connection stands
  virtual void OnDisconnected() = 0;   // when a standing connection is lost

 protected:
  ~IJsonSocketEvents() = default;
};

}  // namespace Vask
