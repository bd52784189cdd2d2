#pragma once

#include <string>

#include "Src/ErrReporter.h"
#include "net/LinkInterfaces.h"
#include "tests/support/TextRecorder.h"

namespace Vask::Tests {

// Keeps what an error sink is told. A message that is not null would be kept as
// "(message) text".
class RecordingErrorSink final : public IOnError {
 public:
  void OnError(Json* message, const char* text) override {
    recorder.Add(message == nullptr ? std::string(text) : "(message) " + std::string(text));
  }
  TextRecorder recorder;
};

// Keeps the bodies of the frames that came.
class RecordingTextListener final : public IOnJsonMessageText {
 public:
  bool OnJsonMessageText(const char* text) override {
    recorder.Add(text);
    return accepts;
  }
  TextRecorder recorder;
  bool accepts = true;  // the answer; to be set before the first frame
};

// Keeps the names of the events.
class RecordingSocketEvents final : public IJsonSocketEvents {
 public:
  void OnConnecting() override { recorder.Add("connecting"); }
  void OnConnectFailed() override { recorder.Add("failed"); }
  void OnConnected() override { recorder.Add("connected"); }
  void OnDisconnected() override { recorder.Add("disconnected"); }
  TextRecorder recorder;
};

}  // namespace Vask::Tests
