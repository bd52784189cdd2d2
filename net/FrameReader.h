#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Vask {

class IOnError;
class IOnJsonMessageText;

// Splits the link's byte stream into messages. It knows of no socket: whoever
// has the bytes feeds them one by one.
//
// A frame is the body's length in decimal digits, one '#', and that many bytes
// of body; frames follow one another with nothing in between. The length has
// no upper bound and is kept in 32 bits without an overflow check. Memory
// follows the bytes that came, never the length that was announced.
//
// One thread feeds it, and the listener and the sink are called on that thread.
// GetState() may be called from any thread.
class FrameReader {
 public:
  enum State : std::int32_t {
    kDisconnected = 0,  // no connection; no byte is expected
    kReadingSize = 1,   // reading the length, up to the '#'
    kReadingBody = 2,   // reading the body
  };

  // The room for the body that is kept between messages. One that had to grow
  // beyond it is given back as soon as its message is done.
  static constexpr std::size_t kKeptBodyBytes = std::size_t{64} * 1024;

  // Both are lent for the reader's life and may be null: a message without a
  // listener is dropped, a fault without a sink goes unreported. To be set
  // while nobody feeds.
  void SetListener(IOnJsonMessageText* listener) { m_listener = listener; }
  void SetErrorSink(IOnError* sink) { m_errorSink = sink; }

  // A connection stands: what comes next is a length.
  void Begin();
  // The connection is gone, and with it what was received of a message.
  void End();

  // Takes one byte. True: go on. False: the stream is no stream of frames, the
  // sink knows why, and the connection is to be dropped.
  [[nodiscard]] bool ProcessByte(char byte);

  [[nodiscard]] std::int32_t GetState() const { return m_state.load(std::memory_order_relaxed); }
  // Room held for a body, in bytes.
  [[nodiscard]] std::size_t BodyCapacity() const { return m_body.capacity(); }

 private:
  bool ProcessSizeByte(char byte);
  bool ProcessBodyByte(char byte);
  void Deliver();
  void EmptyBody();
  void SetState(std::int32_t state) { m_state.store(state, std::memory_order_relaxed); }

  IOnJsonMessageText* m_listener = nullptr;
  IOnError* m_errorSink = nullptr;
  std::atomic<std::int32_t> m_state{kDisconnected};
  // While reading the length: what it is so far. While reading the body: the
  // bytes that are still to come.
  std::uint32_t m_remaining = 0;
  std::string m_body;
};

}  // namespace Vask
