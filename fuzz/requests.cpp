// Passes the input's names to Get and GetNext, over tables that the input
// describes, and compares the results with a model: one sorted list of the names
// of all cells.
//
// The model leaves out a SEQUENCE before another variable, and a name inside a
// SEQUENCE that is no cell. The walk has rules of its own for these, which the
// unit tests check.

#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "agent/SNMPExtensionAgent.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/Binding.h"
#include "tests/support/FakeClock.h"
#include "tests/support/RecordingLog.h"

namespace {

using Ids = std::vector<UINT>;
using Vask::Tests::Binding;

std::string NameOf(const Ids& ids) {
  std::string name = "P";
  for (const UINT id : ids) name += '.' + std::to_string(id);
  return name;
}

// A table of INT variables with two sub-identifiers each. The last variable may be
// a SEQUENCE. Registered from last to first, like the agent's own variables.
struct Table {
  explicit Table(Vask::Fuzz::Input& input) {
    const std::size_t count = input.Byte() % 8;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint8_t byte = input.Byte();
      suffixes.push_back({byte / 4u % 8u, byte % 4u});
    }
    std::sort(suffixes.begin(), suffixes.end());
    suffixes.erase(std::unique(suffixes.begin(), suffixes.end()), suffixes.end());
    rows = input.Byte() % 5;
    hasSequence = !suffixes.empty() && input.Byte() % 2 == 0;
    Register();
  }

  void Register() {
    Agent::MIB_ENTRY* next = nullptr;
    for (std::size_t i = suffixes.size(); i-- > 0;) {
      const AsnObjectIdentifier suffix = Agent::Lend(suffixes[i]);
      const std::string name = "v" + std::to_string(i);
      if (hasSequence && i + 1 == suffixes.size()) {
        next = agent.Variables().RegisterSequence(suffix, name.c_str(), next);
        for (UINT row = 0; row < rows; ++row) agent.Variables().AddRow(*next, "a", "b");
      } else {
        next = agent.Variables().RegisterInt(suffix, name.c_str(), next, 1);
      }
    }
  }

  // All names that have a value, in ascending order.
  [[nodiscard]] std::vector<Ids> Cells() const {
    std::vector<Ids> cells = suffixes;
    if (!hasSequence) return cells;
    const Ids base = cells.back();
    cells.pop_back();
    for (UINT column = 1; column <= 2; ++column) {
      for (UINT row = 1; row <= rows; ++row) {
        cells.push_back(base);
        cells.back().insert(cells.back().end(), {1, column, row});
      }
    }
    return cells;
  }

  [[nodiscard]] bool IsInsideSequence(const Ids& name) const {
    return hasSequence && name.size() > 2 &&
           std::equal(suffixes.back().begin(), suffixes.back().end(), name.begin());
  }

  Vask::Tests::FakeClock clock;
  Agent::SNMPExtensionAgent agent{clock, Vask::Platform::SystemThreading()};
  std::vector<Ids> suffixes;
  UINT rows = 0;
  bool hasSequence = false;
};

bool IsLeadingPart(const Ids& key, const Ids& name) {
  return key.size() <= name.size() && std::equal(key.begin(), key.end(), name.begin());
}

void ExpectGet(Table& table, const Ids& name, const std::vector<Ids>& cells) {
  const bool known = table.IsInsideSequence(name)
                         ? std::find(cells.begin(), cells.end(), name) != cells.end()
                         : std::any_of(cells.begin(), cells.end(),
                                       [&](const Ids& cell) { return IsLeadingPart(cell, name); });
  // Get ignores the entry number of a cell.
  if (table.IsInsideSequence(name) && name.size() == 5 && name[2] != 1) return;
  Binding binding(NameOf(name));
  FUZZ_EXPECT((table.agent.GetRequest(binding.Get()) == 0) == known);
}

void ExpectGetNext(Table& table, const Ids& name, const std::vector<Ids>& cells) {
  Binding binding(NameOf(name));
  const INT status = table.agent.GetNextRequest(binding.Get());
  const auto next = std::upper_bound(cells.begin(), cells.end(), name);
  const bool isCell = std::find(cells.begin(), cells.end(), name) != cells.end();
  if (table.IsInsideSequence(name) && !isCell) return;
  // A step from before a SEQUENCE returns its bare name without a value. The walk
  // then continues from that name.
  const Ids bare = table.hasSequence ? table.suffixes.back() : Ids{};
  if (table.hasSequence && binding.Name() == NameOf(bare)) return;
  FUZZ_EXPECT((status == 0) == (next != cells.end()));
  if (status == 0) FUZZ_EXPECT(binding.Name() == NameOf(*next));
}

// A walk from the prefix on returns all cells in ascending order.
void ExpectWalk(Table& table, const std::vector<Ids>& cells) {
  std::vector<std::string> walked;
  std::string name = "P";
  for (std::size_t step = 0; step <= cells.size() + 1; ++step) {
    Binding binding(name);
    if (table.agent.GetNextRequest(binding.Get()) != 0) break;
    name = binding.Name();
    if (binding.Value() != "none") walked.push_back(name);
  }
  std::vector<std::string> expected;
  expected.reserve(cells.size());
  for (const Ids& cell : cells) expected.push_back(NameOf(cell));
  FUZZ_EXPECT(walked == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Vask::Tests::RecordingLog log;  // keeps the lines off the console
  Vask::Fuzz::Input input(data, size);
  Table table(input);
  const std::vector<Ids> cells = table.Cells();
  ExpectWalk(table, cells);
  while (!input.AtEnd()) {
    Ids name(input.Byte() % 7);
    for (UINT& id : name) id = input.Byte() % 9;
    ExpectGet(table, name, cells);
    ExpectGetNext(table, name, cells);
  }
  log.Clear();
  return 0;
}
