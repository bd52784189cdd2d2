// Feeds a byte stream to the link's framing and compares the result with a model that
// sees the whole stream at once. After a fault the stream starts anew, as it does after
// a reconnection.

#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "net/Framing.h"
#include "tests/support/LinkRecorders.h"

namespace {

struct Outcome {
  std::vector<std::string> bodies;
  std::vector<std::string> faults;
};

// The number before the '#', modulo 2^32.
std::uint32_t ReadSize(const std::string& stream, std::size_t& at) {
  std::uint32_t size = 0;
  for (; at < stream.size() && stream[at] >= '0' && stream[at] <= '9'; ++at) {
    size = size * 10 + static_cast<std::uint32_t>(stream[at] - '0');
  }
  return size;
}

// Reads one frame or one fault, and moves `at` behind it.
void Take(const std::string& stream, std::size_t& at, Outcome& outcome) {
  const std::uint32_t size = ReadSize(stream, at);
  if (at == stream.size()) return;
  const char end = stream[at++];
  if (end != '#') {
    outcome.faults.push_back(std::string("Vask::JsonSocket::ProcessByteUnexpected char '") + end +
                             "'");
  } else if (size == 0) {
    outcome.faults.push_back("Vask::JsonSocket::ProcessByteProtocol error. Message size is zero!");
  } else if (at == stream.size()) {
    return;
  } else if (size > INT32_MAX) {  // negative as a signed number; the next byte is refused
    outcome.faults.push_back("Vask::JsonSocket::ProcessByteUnexpected state!");
    ++at;
  } else if (stream.size() - at >= size) {
    outcome.bodies.push_back(
        stream.substr(at, size).c_str());  // the listener gets the text up to a NUL
    at += size;
  } else {
    at = stream.size();
  }
}

Outcome Model(const std::string& stream) {
  Outcome outcome;
  for (std::size_t at = 0; at < stream.size();) Take(stream, at, outcome);
  return outcome;
}

// An unexpected NUL ends the text that reports it.
void CutAtNul(std::vector<std::string>& texts) {
  for (std::string& text : texts) text.resize(std::strlen(text.c_str()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string stream = Vask::Fuzz::Input(data, size).Rest();
  Vask::Tests::RecordingTextListener listener;
  Vask::Tests::RecordingErrorSink sink;
  Vask::FrameReader reader;
  reader.SetListener(&listener);
  reader.SetErrorSink(&sink);
  reader.Begin();
  std::size_t fed = 0;
  for (const char byte : stream) {
    ++fed;
    if (!reader.ProcessByte(byte)) {
      reader.End();
      reader.Begin();
    }
    FUZZ_EXPECT(reader.BodyCapacity() <= Vask::FrameReader::kKeptBodyBytes + 2 * fed);
  }
  Outcome expected = Model(stream);
  CutAtNul(expected.faults);
  FUZZ_EXPECT(listener.recorder.Texts() == expected.bodies);
  std::vector<std::string> faults = sink.recorder.Texts();
  CutAtNul(faults);
  FUZZ_EXPECT(faults == expected.faults);
  return 0;
}
