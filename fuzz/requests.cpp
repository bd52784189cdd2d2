// Passes the input's names to Get and GetNext, over tables that the input
// describes, and compares the results with a model: one sorted list of the names
// of all cells.
//
// The model leaves out a SEQUENCE before another variable, and a name inside a
// SEQUENCE that is no cell. The walk has rules of its own for these, which the
// unit tests check.

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "agent/SNMPExtensionAgent.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/Binding.h"
#include "tests/support/FakeClock.h"
#include "tests/support/RecordingLog.h"

namespace {

// A name behind the agent's prefix. It allocates nothing.
class Name {
 public:
  static constexpr std::size_t kLongest = 8;

  Name(std::initializer_list<UINT> ids) { Append(ids); }

  void Append(std::initializer_list<UINT> ids) {
    for (const UINT id : ids) m_ids.at(m_length++) = id;
  }
  [[nodiscard]] std::span<const UINT> Ids() const { return {m_ids.data(), m_length}; }

  [[nodiscard]] bool IsLeadingPartOf(const Name& other) const {
    return m_length <= other.m_length &&
           std::equal(Ids().begin(), Ids().end(), other.Ids().begin());
  }
  bool operator<(const Name& other) const {
    return std::lexicographical_compare(Ids().begin(), Ids().end(), other.Ids().begin(),
                                        other.Ids().end());
  }
  bool operator==(const Name& other) const {
    return m_length == other.m_length && IsLeadingPartOf(other);
  }

 private:
  std::array<UINT, kLongest> m_ids{};
  std::size_t m_length = 0;
};
using Names = std::vector<Name>;

bool Contains(const Names& names, const Name& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Drops all lines, so that the console stays empty.
class SilentLog final : public Vask::Tests::LinesOnlyLog {
 public:
  SilentLog() { Vask::LogPrinter::Instance().SetTarget(this); }
  ~SilentLog() override { Vask::LogPrinter::Instance().SetTarget(nullptr); }

  void Info(const char*) override {}
  void Warning(const char*) override {}
  void Error(const char*) override {}
  void Trace(const char*) override {}
};

// A table of INT and STRING variables with two sub-identifiers each. The last variable may
// be a SEQUENCE. Registered from last to first, like the agent's own variables.
struct Table {
  explicit Table(Vask::Fuzz::Input& input) {
    const std::size_t count = input.Byte() % 8;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint8_t byte = input.Byte();
      suffixes.push_back({byte / 4u % 8u, byte % 4u});
      isText[byte % 32u] = (byte & 32) != 0;
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
      const AsnObjectIdentifier suffix = Agent::Lend(suffixes[i].Ids());
      const std::string name = "v" + std::to_string(i);
      if (hasSequence && i + 1 == suffixes.size()) {
        next = agent.Variables().RegisterSequence(suffix, name.c_str(), next);
        for (UINT row = 0; row < rows; ++row) agent.Variables().AddRow(*next, "a", "b");
      } else if (IsText(suffixes[i])) {
        next = agent.Variables().RegisterString(suffix, name.c_str(), next, 4, "text");
      } else {
        next = agent.Variables().RegisterInt(suffix, name.c_str(), next, 1);
      }
    }
  }

  // `name` begins with the suffix of a variable that is no SEQUENCE.
  [[nodiscard]] bool IsText(const Name& name) const {
    return isText[name.Ids()[0] * 4 + name.Ids()[1]];
  }

  // All names that have a value, in ascending order.
  [[nodiscard]] Names Cells() const {
    Names cells = suffixes;
    if (!hasSequence) return cells;
    const Name base = cells.back();
    cells.pop_back();
    for (UINT column = 1; column <= 2; ++column) {
      for (UINT row = 1; row <= rows; ++row) {
        cells.push_back(base);
        cells.back().Append({1, column, row});
      }
    }
    return cells;
  }

  [[nodiscard]] bool IsInsideSequence(const Name& name) const {
    return hasSequence && name.Ids().size() > 2 && suffixes.back().IsLeadingPartOf(name);
  }

  Vask::Tests::FakeClock clock;
  Agent::SNMPExtensionAgent agent{clock, Vask::Platform::SystemThreading()};
  Names suffixes;
  std::array<bool, 32> isText{};  // by the suffix
  UINT rows = 0;
  bool hasSequence = false;
};

// One binding, as the service keeps it through the steps of a walk.
class Request {
 public:
  Request(Table& table, const Name& name) : m_agent(table.agent) {
    const AsnObjectIdentifier prefix = m_agent.Prefix();
    const std::span<const UINT> ids = name.Ids();
    AsnObjectIdentifier& whole = m_binding.name;
    whole.idLength = prefix.idLength + static_cast<UINT>(ids.size());
    whole.ids =
        static_cast<UINT*>(SnmpUtilMemAlloc(static_cast<UINT>(whole.idLength * sizeof(UINT))));
    std::copy(ids.begin(), ids.end(), std::copy_n(prefix.ids, prefix.idLength, whole.ids));
    m_binding.value.asnType = ASN_NULL;
  }
  ~Request() {
    Vask::Tests::FreeText(m_binding.value);
    SnmpUtilOidFree(&m_binding.name);
  }
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  [[nodiscard]] bool Get() { return m_agent.GetRequest(m_binding) == 0; }

  // Drops the value of the last step first.
  [[nodiscard]] bool GetNext() {
    Vask::Tests::FreeText(m_binding.value);
    m_binding.value.asnType = ASN_NULL;
    return m_agent.GetNextRequest(m_binding) == 0;
  }

  [[nodiscard]] bool HasValue() const { return m_binding.value.asnType != ASN_NULL; }
  [[nodiscard]] bool HasNumber() const {
    return m_binding.value.asnType == ASN_INTEGER && m_binding.value.asnValue.number == 1;
  }
  [[nodiscard]] bool HasText(std::string_view text) const {
    const AsnOctetString& held = m_binding.value.asnValue.string;
    return m_binding.value.asnType == ASN_OCTETSTRING &&
           text == std::string_view(reinterpret_cast<const char*>(held.stream), held.length);
  }
  [[nodiscard]] bool IsAt(const Name& name) const {
    const AsnObjectIdentifier prefix = m_agent.Prefix();
    const std::span<const UINT> whole(m_binding.name.ids, m_binding.name.idLength);
    return whole.size() >= prefix.idLength &&
           std::equal(prefix.ids, prefix.ids + prefix.idLength, whole.begin()) &&
           std::ranges::equal(whole.subspan(prefix.idLength), name.Ids());
  }

 private:
  Agent::SNMPExtensionAgent& m_agent;
  SnmpVarBind m_binding{};
};

void ExpectGet(Table& table, const Name& name, const Names& cells) {
  const bool known = table.IsInsideSequence(name)
                         ? Contains(cells, name)
                         : std::any_of(cells.begin(), cells.end(), [&](const Name& cell) {
                             return cell.IsLeadingPartOf(name);
                           });
  // Get ignores the entry number of a cell.
  const std::span<const UINT> ids = name.Ids();
  if (table.IsInsideSequence(name) && ids.size() == 5 && ids[2] != 1) return;
  Request request(table, name);
  FUZZ_EXPECT(request.Get() == known);
  if (!known) return;
  if (table.IsInsideSequence(name)) {
    FUZZ_EXPECT(request.HasText(ids[3] == 1 ? "a" : "b"));
  } else {
    FUZZ_EXPECT(table.IsText(name) ? request.HasText("text") : request.HasNumber());
  }
}

void ExpectGetNext(Table& table, const Name& name, const Names& cells) {
  Request request(table, name);
  const bool found = request.GetNext();
  if (table.IsInsideSequence(name) && !Contains(cells, name)) return;
  // A step from before a SEQUENCE returns its bare name without a value. The walk
  // then continues from that name.
  if (table.hasSequence && request.IsAt(table.suffixes.back())) return;
  const auto next = std::upper_bound(cells.begin(), cells.end(), name);
  FUZZ_EXPECT(found == (next != cells.end()));
  if (found) FUZZ_EXPECT(request.IsAt(*next));
}

// A walk from the prefix on returns all cells in ascending order.
void ExpectWalk(Table& table, const Names& cells) {
  Request request(table, {});
  std::size_t walked = 0;
  for (std::size_t step = 0; step <= cells.size() + 1 && request.GetNext(); ++step) {
    if (!request.HasValue()) continue;
    FUZZ_EXPECT(walked < cells.size() && request.IsAt(cells[walked]));
    ++walked;
  }
  FUZZ_EXPECT(walked == cells.size());
}

// Small, so that many names meet a variable, or close to the largest.
UINT IdOf(std::uint8_t byte) {
  return byte < 0xF0 ? byte % 9u : UINT32_MAX - (0xFFu - byte);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static SilentLog log;
  Vask::Fuzz::Input input(data, size);
  Table table(input);
  const Names cells = table.Cells();
  ExpectWalk(table, cells);
  while (!input.AtEnd()) {
    Name name{};
    for (unsigned rest = input.Byte() % 7; rest > 0; --rest) name.Append({IdOf(input.Byte())});
    ExpectGet(table, name, cells);
    ExpectGetNext(table, name, cells);
  }
  return 0;
}
