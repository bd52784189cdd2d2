#pragma once

#include <string>

#include "Src/ErrReporter.h"
#include "net/LinkInterfaces.h"
#include "tests/support/TextRecorder.h"

namespace Vask::Tests {

// Records the texts that an error sink receives. With a message that is not null it
// records "(message) text".
class RecordingErrorSink final : public IOnError {
 public:
  void OnError(Json* message, const char* text) override {
    recorder.Add(message == nullptr ? std::string(text) : "(message) " + std::string(text));
  }
  TextRecorder recorder;
};

// Records the bodies of the frames.
class RecordingTextListener final : public IOnJsonMessageText {
 public:
  bool OnJsonMessageText(const char* text) override {
    recorder.Add(text);
    return accepts;
  }
  TextRecorder recorder;
  bool accepts = true;  // the result; set it before the first frame
};

// Records the names of the events.
class RecordingSocketEvents final : public IJsonSocketEvents {
 public:
  void OnConnecting() override { recorder.Add("connecting"); }
  void OnConnectFailed() override { recorder.Add("failed"); }
  void OnConnected() override { recorder.Add("connected"); }
  void OnDisconnected() override { recorder.Add("disconnected"); }
  TextRecorder recorder;
};

}  // namespace Vask::Tests
