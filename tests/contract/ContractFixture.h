#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "simulator/CorvaneServer.h"
#include "tests/contract/Eventually.h"
#include "tests/contract/LogFolder.h"
#include "tests/contract/Module.h"
#include "tests/support/Binding.h"
#include "tests/support/MachinePauses.h"

namespace Contract {

using Vask::Tests::FullName;
using Lines = std::vector<std::string>;
using Traps = std::vector<std::int32_t>;

// A freshly loaded module and its log. The simulator stands for the Corvane process;
// a test starts it if it needs it.
class ContractTest : public ::testing::Test {
 protected:
  static std::uint32_t Now() { return Vask::Platform::SystemClock().TickMs(); }

  void StartServer(bool answerUpdates = true) {
    Simulator::ServerOptions options;
    options.port = kLinkPort;
    options.answerUpdates = answerUpdates;
    server = std::make_unique<Simulator::CorvaneServer>(options);
    ASSERT_TRUE(server->Start()) << "port " << kLinkPort << " is taken";
  }

  // Starts server and module and waits for the link between them.
  void StartLinked() {
    StartServer();
    ASSERT_TRUE(module.Init().result);
    ASSERT_TRUE(server->WaitForConnections(1));
    ASSERT_TRUE(Eventually([this] { return LinkIs("0"); }));
  }

  bool LinkIs(const std::string& state) { return module.Get("P.0.0") == "0 P.0.0 = INT " + state; }
  bool Reads(const std::string& name, const std::string& value) {
    return module.Get(name) == "0 " + name + " = " + value;
  }

  // The duration of an unload, in milliseconds.
  std::uint32_t TimedUnload() {
    return Vask::Tests::TimedMs([this] { module.Unload(); });
  }

  LogFolder log;
  std::unique_ptr<Simulator::CorvaneServer> server;
  Module module;
};

}  // namespace Contract
