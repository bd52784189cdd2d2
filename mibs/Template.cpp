#include "mibs/Template.h"

#include <sstream>
#include <stdexcept>
#include <utility>

#include "mibs/Facts.h"

namespace Mibs {

namespace {

constexpr std::string_view kEach = "@each ";
constexpr std::string_view kEnd = "@end";
constexpr std::string_view kOpen = "@{";

std::vector<Facts> RowsOf(const std::string& kind) {
  if (kind == "variable") return VariableFacts();
  if (kind == "number") return NumberFacts();
  if (kind == "text") return TextFacts();
  if (kind == "trap") return TrapFacts();
  throw std::invalid_argument(std::string(kEach) + kind);
}

const std::string& At(const Facts& facts, const std::string& word, const std::string& whole) {
  const auto found = facts.find(word);
  if (found == facts.end()) throw std::invalid_argument(std::string(kOpen) + whole + '}');
  return found->second;
}

// "StreamsErrors.oid": the row of that name, among variables and traps.
std::string NamedFact(const std::string& word, std::size_t dot) {
  for (const auto& rows : {VariableFacts(), TrapFacts()})
    for (const Facts& row : rows)
      if (row.at("name") == word.substr(0, dot)) return At(row, word.substr(dot + 1), word);
  throw std::invalid_argument(std::string(kOpen) + word + '}');
}

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

// The lines up to "@end", once for each row.
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
