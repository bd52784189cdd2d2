#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace Hostile {

// What becomes of the link after an input.
enum class Then {
  InStep,      // nothing: the next good frame on the same connection is applied
  AgentDrops,  // the agent ends the connection: what came is no frame
  PeerDrops,   // the peer ends it, since the agent waits for the rest of a frame
};

// One thing that a hostile peer sends.
struct Input {
  std::string name;
  std::string bytes;
  Then then;
  // What the agent may hold for each byte of it while it deals with it. A value
  // of a text costs what its object costs, however few bytes it is written in.
  std::size_t memoryPerByte = 1;
};

// How large and how many things are, by what the machine and the time allow.
struct Scale {
  std::size_t randomStreams;  // streams of random bytes, each on a connection of its own
  std::size_t damagedFrames;  // good frames with bytes changed
  std::size_t floodFrames;    // good frames without a pause
  std::size_t unreadFrames;   // reported ones, of which a peer reads nothing
  bool fillsTheLink;          // whether they are more than the system has room for
  std::size_t longest;        // characters of a key, levels of a nesting
  std::size_t emptyKeys;      // frames with values under empty keys
};

// That of this build and machine: hundreds under Wine and with a sanitizer,
// thousands natively, and the hundred thousand when CORVANE_HOSTILE is "full".
Scale UsualScale();

// A good frame: so many streams, so many of them in error.
std::string StreamsFrame(int count, int errors);

// Frames with values under empty keys: alone and beside other members, nested and as
// containers, with the key written as nothing and as \u0000.
std::vector<std::string> EmptyKeyFrames();

// A short good frame that raises two traps, and so two reports to the peer, when
// `errors` is not what it was.
std::string ReportedFrame(int errors);

// Everything that can be listed. Lengths and depths of up to `longest`.
std::vector<Input> ListedInputs(std::size_t longest);

Input RandomStream(std::mt19937& random);
// In one frame of the right size: what is damaged is its text.
Input DamagedFrame(std::mt19937& random);

}  // namespace Hostile
