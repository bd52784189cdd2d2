#include "mibs/Template.h"

#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "BuildSettings.h"
#include "agent/AgentProcess.h"
#include "agent/ObjectIdentifier.h"
#include "mibs/Definitions.h"

namespace Mibs {

namespace {

constexpr std::string_view kEach = "@each ";
constexpr std::string_view kEnd = "@end";
constexpr std::string_view kOpen = "@{";

// The facts about the agent or about one row of its tables, by their names.
using Facts = std::map<std::string, std::string, std::less<>>;

std::string Prefix() {
  Agent::EnterprisePrefix prefix;
  return Agent::DottedText(prefix.Name());
}

// From the enterprise number on.
std::string Tail(const std::string& oid) {
  return oid.substr(sizeof "1.3.6.1.4.1." - 1);
}

Facts FactsOf(const Agent::VariableRow& variable) {
  Agent::EnterprisePrefix prefix;
  const std::string oid = Agent::DottedText(prefix.Name(), Agent::Lend(variable.suffix));
  return {{"name", variable.name},
          {"oid", oid},
          {"instance", oid + ".0"},
          {"metric", MetricOf(variable).name},
          {"meaning", variable.meaning}};
}

Facts FactsOf(const Agent::TrapRow& trap) {
  const Notification& notification = NotificationOf(trap);
  const std::string number = std::to_string(trap.specificTrap);
  const std::string oid = Prefix() + '.' + std::to_string(kEvents.subIdentifier) + '.' + number;
  return {{"name", trap.name},
          {"oid", oid},
          {"tail", Tail(oid)},
          {"number", number},
          {"sentence", notification.sentence},
          {"more", notification.more},
          {"severity", Word(notification.severity)},
          {"raised", trap.raisedWhen}};
}

Facts AgentFacts() {
  return {{"enterprise", std::to_string(CORVANE_ENTERPRISE)},
          {"prefix", Prefix()},
          {"tail", Tail(Prefix())},
          {"version", CORVANE_VERSION_TEXT},
          {"port", std::to_string(Agent::AgentProcess::kLinkPort)},
          {"log-folder",
           std::string(Agent::AgentProcess::kProductFolder) + Agent::AgentProcess::kLogsFolder}};
}

std::vector<Facts> RowsOf(const std::string& kind) {
  std::vector<Facts> rows;
  if (kind == "trap") {
    for (const Agent::TrapRow& trap : Agent::kTraps) rows.push_back(FactsOf(trap));
    return rows;
  }
  if (kind != "variable" && kind != "number" && kind != "text")
    throw std::invalid_argument(std::string(kEach) + kind);
  for (const Agent::VariableRow& variable : Agent::kVariables) {
    const char* const type = variable.type == Agent::kTypeInt ? "number" : "text";
    if (kind == "variable" || kind == type) rows.push_back(FactsOf(variable));
  }
  return rows;
}

const std::string& At(const Facts& facts, const std::string& word, const std::string& whole) {
  const auto found = facts.find(word);
  if (found == facts.end()) throw std::invalid_argument(std::string(kOpen) + whole + '}');
  return found->second;
}

// For "StreamsErrors.oid": the fact "oid" about the variable or trap StreamsErrors.
std::string NamedFact(const std::string& word, std::size_t dot) {
  for (const auto& rows : {RowsOf("variable"), RowsOf("trap")})
    for (const Facts& row : rows)
      if (row.at("name") == word.substr(0, dot)) return At(row, word.substr(dot + 1), word);
  throw std::invalid_argument(std::string(kOpen) + word + '}');
}

// `row` is the current row of a block, or null outside of blocks.
std::string Fact(const std::string& word, const Facts* row) {
  if (const std::size_t dot = word.find('.'); dot != std::string::npos) return NamedFact(word, dot);
  if (row != nullptr && row->contains(word)) return row->at(word);
  return At(AgentFacts(), word, word);
}

std::string FillLine(const std::string& line, const Facts* row) {
  std::string filled;
  std::size_t from = 0;
  for (;;) {
    const std::size_t open = line.find(kOpen, from);
    if (open == std::string::npos) break;
    const std::size_t close = line.find('}', open);
    if (close == std::string::npos) throw std::invalid_argument(line.substr(open));
    const std::size_t word = open + kOpen.size();
    filled += line.substr(from, open - from) + Fact(line.substr(word, close - word), row);
    from = close + 1;
  }
  return filled + line.substr(from) + '\n';
}

// Reads the block from `lines` to its end, and repeats it for each row.
std::string FillBlock(std::istringstream& lines, const std::string& kind) {
  std::vector<std::string> block;
  std::string line;
  while (std::getline(lines, line) && line != kEnd) block.push_back(line);
  if (line != kEnd) throw std::invalid_argument(std::string(kEach) + kind + " without its end");
  std::string filled;
  for (const Facts& row : RowsOf(kind))
    for (const std::string& repeated : block) filled += FillLine(repeated, &row);
  return filled;
}

}  // namespace

std::string FillTemplate(const std::string& text) {
  std::istringstream lines(text);
  std::string filled;
  std::string line;
  while (std::getline(lines, line)) {
    filled += line.starts_with(kEach) ? FillBlock(lines, line.substr(kEach.size()))
                                      : FillLine(line, nullptr);
  }
  return filled;
}

}  // namespace Mibs
