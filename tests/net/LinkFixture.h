#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "net/Framing.h"
#include "net/JsonSocket.h"
#include "simulator/CorvaneServer.h"
#include "tests/support/LinkRecorders.h"
#include "tests/support/MachinePauses.h"

namespace Vask::Tests {

inline std::string Framed(const std::string& body) {
  std::string frame;
  AppendFrame(frame, body);
  return frame;
}

inline JsonRef<Json> Parsed(const std::string& text) {
  ParseResult result;
  return JsonRef<Json>(Parse(result, text.c_str()));
}

inline constexpr std::uint32_t kOneSecondMs = 1000;

// A link with its recorders. It is not opened.
class LinkTest : public testing::Test {
 protected:
  LinkTest() {
    m_link.SetTextListener(&m_listener);
    m_link.SetErrorSink(&m_sink);
  }

  [[nodiscard]] bool Send(const std::string& json) {
    const JsonRef<Json> message = Parsed(json);
    return m_link.OnJsonMessage(message.Get());
  }
  std::vector<std::string> Bodies() const { return m_listener.recorder.Texts(); }
  std::vector<std::string> Faults() const { return m_sink.recorder.Texts(); }

  RecordingTextListener m_listener;
  RecordingErrorSink m_sink;
  RecordingSocketEvents m_events;
  JsonSocket m_link{&m_events};
};

// A link that is connected to a scripted peer.
class JsonSocketTest : public LinkTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_server.Start());
    m_link.SetPort(m_server.Port());
  }
  void TearDown() override { m_link.StopThread(); }

  void OpenAndConnect() {
    ASSERT_TRUE(m_link.OpenThread());
    ASSERT_TRUE(m_server.WaitForConnections(1));
    ASSERT_TRUE(m_events.recorder.WaitForText("connected"));
  }
  [[nodiscard]] bool WaitForBodies(std::size_t count) {
    return m_listener.recorder.WaitForCount(count);
  }

  Simulator::CorvaneServer m_server{{0, false, true, {}}};
};

}  // namespace Vask::Tests
