#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Vask {

class IOnError;
class IOnJsonMessageText;

// The format of messages on the link. A frame is the body's length in decimal digits, one
// '#', and that many bytes of body. Frames follow one another with nothing in between.

// Appends the frame of `body` to `out`. An empty body becomes "0#", which a receiver
// refuses. `body` must be shorter than 2^32 bytes.
void AppendFrame(std::string& out, std::string_view body);

// Splits the link's byte stream into messages. It knows no socket: its caller feeds it
// the bytes one by one.
//
// The length of a frame has no upper bound and is kept in 32 bits without an overflow
// check. Memory grows with the bytes that arrived, never with the announced length.
//
// One thread feeds it, and it calls the listener and the sink on that thread. Any
// thread may call GetState().
class FrameReader {
 public:
  enum State : std::int32_t {
    kDisconnected = 0,  // no connection; no byte is expected
    kReadingSize = 1,   // reading the length, up to the '#'
    kReadingBody = 2,   // reading the body
  };

  // The reader keeps this much memory for the body between messages. It frees a larger
  // one as soon as its message is delivered.
  static constexpr std::size_t kKeptBodyBytes = std::size_t{64} * 1024;

  // Both are lent for the reader's life and may be null: a message without a listener
  // is dropped, a fault without a sink is not reported. Call these while no thread
  // feeds the reader.
  void SetListener(IOnJsonMessageText* listener) { m_listener = listener; }
  void SetErrorSink(IOnError* sink) { m_errorSink = sink; }

  // A connection is established: the next byte belongs to a length.
  void Begin();
  // The connection is gone. Drops what was received of an incomplete message.
  void End();

  // Takes one byte. Returns true if the stream goes on. Returns false after a fault of
  // the stream, which it has reported to the sink; the caller must drop the connection.
  [[nodiscard]] bool ProcessByte(char byte);

  [[nodiscard]] std::int32_t GetState() const { return m_state.load(std::memory_order_relaxed); }
  // Memory held for a body, in bytes.
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
  // While reading the length: its value so far. While reading the body: the number of
  // bytes that are still to come.
  std::uint32_t m_remaining = 0;
  std::string m_body;
};

}  // namespace Vask
