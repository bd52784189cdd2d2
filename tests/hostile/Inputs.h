#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace Hostile {

// The state of the link after an input.
enum class Then {
  InStep,      // unchanged: the agent applies the next good frame of the connection
  AgentDrops,  // the agent ends the connection, because the input is no frame
  PeerDrops,   // the peer ends it, because the agent waits for the rest of a frame
};

// One thing that a hostile peer sends.
struct Input {
  std::string name;
  std::string bytes;
  Then then;
  // Bytes that the agent may hold for each byte of the input while it reads it. The
  // object of a value costs the same, however short its text is.
  std::size_t memoryPerByte = 1;
};

// True in a build with a sanitizer: its own memory hides the module's, and everything
// takes several times as long.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CORVANE_SANITIZED
#endif
#endif
#if defined(CORVANE_SANITIZED)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

// Numbers and sizes of the inputs. They depend on the machine and the build.
struct Scale {
  std::size_t randomStreams;  // streams of random bytes, each on a connection of its own
  std::size_t damagedFrames;  // good frames with bytes changed
  std::size_t floodFrames;    // good frames without a pause
  std::size_t unreadFrames;   // frames whose reports the peer does not read
  bool fillsTheLink;          // true if those reports exceed the system's buffers
  std::size_t longest;        // characters of a key, levels of a nesting
};

// The scale of this build and machine: hundreds under Wine and with a sanitizer,
// thousands natively, and a hundred thousand if CORVANE_HOSTILE is "full".
Scale UsualScale();

// A good frame with these numbers of streams and of failed streams.
std::string StreamsFrame(int count, int errors);

// Frames with values under empty keys: alone and beside other members, nested and as
// containers. The key is empty or \u0000.
std::vector<std::string> EmptyKeyFrames();

// A short good frame. If `errors` changes, it raises two traps, and the agent sends a
// report of each to the peer.
std::string ReportedFrame(int errors);

// All inputs that are not random. Lengths and depths are at most `longest`.
std::vector<Input> ListedInputs(std::size_t longest);

Input RandomStream(std::mt19937& random);
// A frame with the right size whose text is damaged.
Input DamagedFrame(std::mt19937& random);

}  // namespace Hostile
