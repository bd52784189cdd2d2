#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "simulator/CorvaneServer.h"
#include "tests/contract/LogFolder.h"
#include "tests/contract/Module.h"
#include "tests/hostile/Inputs.h"

namespace Hostile {

// The built module, started, and the hostile peer on its link. One thread.
//
// What goes wrong is answered as a phrase; the empty text is good.
class Target {
 public:
  // How many streams a frame may tell of that is none of this class's own: what
  // Serves looks for is then not there before it has been sent.
  static constexpr int kForeignStreams = 1002;

  Target();

  // Starts the module unless it has been, and waits for the link, and for a good
  // frame to be served.
  std::string Begin(bool isStarted = false);

  // Sends an input, lets become of the link what must, and checks that the agent
  // serves on.
  std::string Take(const Input& input);

  // Whether the next good frame is applied and a Get answers with it. On a link
  // that has just come back it may take more than one. So many bytes may still lie
  // before it, of which each takes its time.
  std::string Serves(bool firstFrameCounts = true, std::size_t bytesBefore = 0);

  // Good frames without a pause, each of which raises a trap; every so many
  // frames the traps are taken.
  std::string Flood(std::size_t frames, bool takeTraps);

  // Drops the link, and leaves the next one alone until the agent asks for an
  // update, which is answered.
  std::string AnswersUpdate();

  // The last few, for whoever looks for a reason.
  std::string HowLinksEnded() const;

  Contract::Module& Module() { return m_module; }
  Simulator::CorvaneServer& Peer() { return m_peer; }

 private:
  bool Comes(const std::string& value, std::uint32_t patienceMs);
  std::size_t Connections() const;
  std::size_t Ends() const;

  Contract::LogFolder m_log;
  Simulator::CorvaneServer m_peer;
  Contract::Module m_module;
  int m_count = 0;  // what the last good frame said
};

}  // namespace Hostile
