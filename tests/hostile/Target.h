#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "simulator/CorvaneServer.h"
#include "tests/contract/LogFolder.h"
#include "tests/contract/Module.h"
#include "tests/hostile/Inputs.h"

namespace Hostile {

// The built module, and the hostile peer on its link. One thread.
//
// The functions return a phrase that names the failure, or an empty text.
class Target {
 public:
  // The number of streams in a frame that this class does not send itself. The frames
  // that Serves sends never contain it, so it cannot be mistaken for one of them.
  static constexpr int kForeignStreams = 1002;

  Target();

  // Starts the module unless it is started. Waits for the link, and until a good frame
  // is applied.
  std::string Begin(bool isStarted = false);

  // Sends an input, waits for the state of the link that it names, and checks that the
  // agent still serves.
  std::string Take(const Input& input);

  // Checks that the agent applies the next good frame and that a Get returns its value.
  // On a link that has just come back, more than one frame may be necessary
  // (`firstFrameCounts` is false). The agent first reads `bytesBefore` bytes of earlier
  // input, and the check waits longer for them.
  std::string Serves(bool firstFrameCounts = true, std::size_t bytesBefore = 0);

  // Sends good frames without a pause. Each raises a trap. If `takeTraps` is true, takes
  // the traps after a number of frames.
  std::string Flood(std::size_t frames, bool takeTraps);

  // Drops the link, sends nothing on the next one until the agent asks for an update,
  // and answers it.
  std::string AnswersUpdate();

  // The ends of the last links, for a message of a failure.
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
  int m_count = 0;        // number of streams in the last good frame
  int m_updateCount = 0;  // of streams, in the last update
};

}  // namespace Hostile
