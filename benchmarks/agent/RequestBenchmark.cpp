// Requests with the log open, as the SNMP service makes them, against the log
// lines that they write.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include "Src/DailyLog.h"
#include "Src/LogPrinter.h"
#include "agent/SNMPExtensionAgent.h"
#include "agent/Variables.h"
#include "platform/Clock.h"
#include "platform/Threading.h"

namespace {

using Agent::SNMPExtensionAgent;
using Vask::LogPrinter;

// One agent with its variables for all benchmarks, and a log in a temporary
// folder that goes with the program.
class World {
 public:
  World() {
    std::filesystem::create_directories(m_folder);
    std::string path = m_folder.string();
    std::replace(path.begin(), path.end(), '/', '\\');
    if (!m_log.Open(path.c_str())) std::abort();
    LogPrinter::Instance().SetTarget(&m_log);
    Agent::RegisterVariables(m_agent.Variables());
  }
  ~World() {
    LogPrinter::Instance().SetTarget(nullptr);
    std::filesystem::remove_all(m_folder);
  }

  SNMPExtensionAgent& Agent() { return m_agent; }

  // A name under the prefix, in the service's own memory.
  AsnObjectIdentifier Name(UINT group, UINT variable) {
    UINT ids[10];
    const AsnObjectIdentifier prefix = m_agent.Prefix();
    std::copy(prefix.ids, prefix.ids + 8, ids);
    ids[8] = group;
    ids[9] = variable;
    AsnObjectIdentifier lent{10, ids};
    AsnObjectIdentifier name{0, nullptr};
    SnmpUtilOidCpy(&name, &lent);
    return name;
  }

 private:
  std::filesystem::path m_folder =
      std::filesystem::temp_directory_path() / "corvane-agent-benchmark";
  Vask::DailyLog m_log;
  SNMPExtensionAgent m_agent{Vask::Platform::SystemClock(), Vask::Platform::SystemThreading()};
};

World& TheWorld() {
  static World world;
  return world;
}

std::string Dotted(const AsnObjectIdentifier& name) {
  return Agent::DottedText(name);
}

// The last variable: the longest way through the list.
void GetNumber(benchmark::State& state) {
  World& world = TheWorld();
  SnmpVarBind binding{world.Name(2, 4), {}};
  for (auto _ : state) benchmark::DoNotOptimize(world.Agent().GetRequest(binding));
  SnmpUtilOidFree(&binding.name);
}
BENCHMARK(GetNumber);

void TwoLinesOfGetNumber(benchmark::State& state) {
  World& world = TheWorld();
  AsnObjectIdentifier name = world.Name(2, 4);
  const std::string dotted = Dotted(name);
  for (auto _ : state) {
    LogPrinter::Instance().Info("GetRequest(%s)\n", dotted.c_str());
    LogPrinter::Instance().Info("GetStoredVar(%s) = INT: %d\n", "AudioSourcesSilence", 0);
  }
  SnmpUtilOidFree(&name);
}
BENCHMARK(TwoLinesOfGetNumber);

void GetText(benchmark::State& state) {
  World& world = TheWorld();
  SnmpVarBind binding{world.Name(1, 0), {}};
  for (auto _ : state) {
    benchmark::DoNotOptimize(world.Agent().GetRequest(binding));
    SnmpUtilMemFree(binding.value.asnValue.string.stream);
  }
  SnmpUtilOidFree(&binding.name);
}
BENCHMARK(GetText);

void TwoLinesOfGetText(benchmark::State& state) {
  World& world = TheWorld();
  AsnObjectIdentifier name = world.Name(1, 0);
  const std::string dotted = Dotted(name);
  for (auto _ : state) {
    LogPrinter::Instance().Info("GetRequest(%s)\n", dotted.c_str());
    LogPrinter::Instance().Info("GetStoredVar(%s) = STRING[%d]: '%s'\n", "ProductName", 7,
                                "Corvane");
  }
  SnmpUtilOidFree(&name);
}
BENCHMARK(TwoLinesOfGetText);

void GetNext(benchmark::State& state) {
  World& world = TheWorld();
  for (auto _ : state) {
    SnmpVarBind binding{world.Name(2, 3), {}};
    benchmark::DoNotOptimize(world.Agent().GetNextRequest(binding));
    SnmpUtilOidFree(&binding.name);
  }
}
BENCHMARK(GetNext);

void ThreeLinesOfGetNext(benchmark::State& state) {
  World& world = TheWorld();
  AsnObjectIdentifier from = world.Name(2, 3);
  AsnObjectIdentifier to = world.Name(2, 4);
  const std::string dottedFrom = Dotted(from);
  const std::string dottedTo = Dotted(to);
  for (auto _ : state) {
    LogPrinter::Instance().Info("GetNextRequest(%s)\n", dottedFrom.c_str());
    LogPrinter::Instance().Info("GetNextRequest: next = %s, type %d\n", dottedTo.c_str(), 2);
    LogPrinter::Instance().Info("GetStoredVar(%s) = INT: %d\n", "AudioSourcesSilence", 0);
  }
  SnmpUtilOidFree(&from);
  SnmpUtilOidFree(&to);
}
BENCHMARK(ThreeLinesOfGetNext);

// All eight variables in one request.
void GetEightBindings(benchmark::State& state) {
  World& world = TheWorld();
  SnmpVarBind bindings[std::size(Agent::kVariables)];
  for (std::size_t i = 0; i < std::size(bindings); ++i) {
    const UINT* const suffix = Agent::kVariables[i].suffix;
    bindings[i] = {world.Name(suffix[0], suffix[1]), {}};
  }
  for (auto _ : state) {
    for (SnmpVarBind& binding : bindings) {
      benchmark::DoNotOptimize(world.Agent().GetRequest(binding));
      if (binding.value.asnType == ASN_OCTETSTRING)
        SnmpUtilMemFree(binding.value.asnValue.string.stream);
    }
  }
  for (SnmpVarBind& binding : bindings) SnmpUtilOidFree(&binding.name);
}
BENCHMARK(GetEightBindings);

}  // namespace
