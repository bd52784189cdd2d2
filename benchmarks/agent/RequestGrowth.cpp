// What requests cost, by the number of variables and by the number of rows of a SEQUENCE.
// The log drops all lines, because the time of its file would hide the search.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <deque>
#include <string>

#include "Src/DailyLog.h"
#include "Src/LogPrinter.h"
#include "agent/SNMPExtensionAgent.h"

namespace {

using Agent::MIB_ENTRY;
using Vask::Platform::SystemClock;
using Vask::Platform::SystemFiles;
using Vask::Platform::SystemSockets;
using Vask::Platform::SystemThreading;

// Formats each line and drops it.
struct SilentLog {
  SilentLog() { Vask::LogPrinter::Instance().SetTarget(&log); }

  Vask::DailyLog log{SystemClock(), SystemFiles(), SystemSockets(), 0};
};

// An agent whose variables are those that a benchmark registers, from the last to the first.
class Table {
 public:
  MIB_ENTRY* Numbers(std::int64_t count) {
    MIB_ENTRY* next = nullptr;
    for (std::int64_t i = count; i > 0; --i) {
      next = m_agent.Variables().RegisterInt(Suffix(i), NameOf(i).c_str(), next, 5);
    }
    return next;
  }
  MIB_ENTRY& Sequence(std::int64_t rows) {
    MIB_ENTRY* const entry = m_agent.Variables().RegisterSequence(Suffix(1), "sequence", nullptr);
    for (std::int64_t i = 0; i < rows; ++i) Agent::MibTable::AddRow(*entry, "name", "value");
    return *entry;
  }

  // A name under the prefix, in memory of the SNMP utility functions.
  SnmpVarBind Binding(std::initializer_list<UINT> below) {
    Agent::ObjectIdentifier name;
    SnmpVarBind binding{};
    if (name.Join({m_agent.Prefix(), Agent::Lend({below.begin(), below.size()})})) {
      name.MoveInto(binding.name);
    }
    return binding;
  }

  Agent::SNMPExtensionAgent& Agent() { return m_agent; }

 private:
  static std::string NameOf(std::int64_t number) { return "variable" + std::to_string(number); }
  AsnObjectIdentifier Suffix(std::int64_t number) {
    return Agent::Lend({&m_suffixes.emplace_back(static_cast<UINT>(number)), 1});
  }

  SilentLog m_silent;
  std::deque<UINT> m_suffixes;  // an element stays in its place
  Agent::SNMPExtensionAgent m_agent{SystemClock(), SystemThreading()};
};

void Free(SnmpVarBind& binding) {
  SnmpUtilOidFree(&binding.name);
  if (binding.value.asnType == ASN_OCTETSTRING) {
    SnmpUtilMemFree(binding.value.asnValue.string.stream);
  }
}

using Serve = INT (Agent::SNMPExtensionAgent::*)(SnmpVarBind& binding) const;

// One request again and again; the name is made anew for each.
void Request(benchmark::State& state, Table& table, Serve serve, std::initializer_list<UINT> name) {
  for ([[maybe_unused]] const auto& iteration : state) {
    SnmpVarBind binding = table.Binding(name);
    if ((table.Agent().*serve)(binding) != 0) state.SkipWithError("a request failed");
    Free(binding);
  }
}

// GetNext from the prefix to the end.
void WalkAll(benchmark::State& state, Table& table) {
  for ([[maybe_unused]] const auto& iteration : state) {
    SnmpVarBind binding = table.Binding({});
    std::int64_t values = 0;
    while (table.Agent().GetNextRequest(binding) == 0) {
      if (binding.value.asnType == ASN_NULL) continue;  // the bare name of a SEQUENCE
      if (binding.value.asnType == ASN_OCTETSTRING) {
        SnmpUtilMemFree(binding.value.asnValue.string.stream);
      }
      binding.value.asnType = ASN_NULL;
      ++values;
    }
    SnmpUtilOidFree(&binding.name);
    if (values == 0) state.SkipWithError("the walk met nothing");
  }
}

void GetLast(benchmark::State& state) {
  Table table;
  table.Numbers(state.range(0));
  Request(state, table, &Agent::SNMPExtensionAgent::GetRequest,
          {static_cast<UINT>(state.range(0))});
}
BENCHMARK(GetLast)->RangeMultiplier(2)->Range(8, 8'192);

void GetNextLast(benchmark::State& state) {
  Table table;
  table.Numbers(state.range(0));
  Request(state, table, &Agent::SNMPExtensionAgent::GetNextRequest,
          {static_cast<UINT>(state.range(0) - 1)});
}
BENCHMARK(GetNextLast)->RangeMultiplier(2)->Range(8, 8'192);

void Walk(benchmark::State& state) {
  Table table;
  table.Numbers(state.range(0));
  WalkAll(state, table);
}
BENCHMARK(Walk)->RangeMultiplier(2)->Range(8, 8'192);

void GetLastRow(benchmark::State& state) {
  Table table;
  table.Sequence(state.range(0));
  Request(state, table, &Agent::SNMPExtensionAgent::GetRequest,
          {1, 1, 2, static_cast<UINT>(state.range(0))});
}
BENCHMARK(GetLastRow)->RangeMultiplier(2)->Range(1, 10'000);

void GetNextLastRow(benchmark::State& state) {
  Table table;
  table.Sequence(state.range(0));
  Request(state, table, &Agent::SNMPExtensionAgent::GetNextRequest,
          {1, 1, 2, static_cast<UINT>(state.range(0) - 1)});
}
BENCHMARK(GetNextLastRow)->RangeMultiplier(2)->Range(2, 10'000);

void WalkRows(benchmark::State& state) {
  Table table;
  table.Sequence(state.range(0));
  WalkAll(state, table);
}
BENCHMARK(WalkRows)->RangeMultiplier(2)->Range(1, 10'000);

void FillAndClearRows(benchmark::State& state) {
  Table table;
  MIB_ENTRY& entry = table.Sequence(0);
  for ([[maybe_unused]] const auto& iteration : state) {
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      Agent::MibTable::AddRow(entry, "name", "value");
    }
    Agent::MibTable::ClearRows(entry);
  }
}
BENCHMARK(FillAndClearRows)->RangeMultiplier(2)->Range(1, 10'000);

}  // namespace
