// Measures requests of the SNMP service with the log open, and separately the log lines
// that they write.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "Src/LogPrinter.h"
#include "agent/Variables.h"
#include "tests/support/DataFolder.h"
#include "tests/support/WholeAgent.h"

namespace {

using Agent::SNMPExtensionAgent;
using Vask::LogPrinter;

// One started agent for all benchmarks. It has no threads; its log is in a
// temporary folder, which the program deletes at its end.
class World {
 public:
  // Start returns false, because there is no thread for the link.
  World() { static_cast<void>(m_whole.process.Start()); }

  SNMPExtensionAgent& Agent() { return m_whole.process.Extension(); }

  // A name under the prefix, in memory of the SNMP utility functions.
  AsnObjectIdentifier Name(UINT group, UINT variable) {
    UINT ids[10];
    const AsnObjectIdentifier prefix = Agent().Prefix();
    std::copy(prefix.ids, prefix.ids + 8, ids);
    ids[8] = group;
    ids[9] = variable;
    AsnObjectIdentifier lent{10, ids};
    AsnObjectIdentifier name{0, nullptr};
    SnmpUtilOidCpy(&name, &lent);
    return name;
  }

 private:
  Vask::Platform::Clock& m_clock = Vask::Platform::SystemClock();
  Vask::Tests::DataFolder m_files;
  Agent::Tests::NoNetwork m_sockets;
  Agent::Tests::NoThreads m_threading;
  Agent::Tests::WholeAgent m_whole{
      {m_clock, m_files, m_sockets, m_threading, m_clock, m_threading}};
};

World& TheWorld() {
  static World world;
  return world;
}

std::string Dotted(const AsnObjectIdentifier& name) {
  return Agent::DottedText(name);
}

// The last variable is the last in the list that a request walks.
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
