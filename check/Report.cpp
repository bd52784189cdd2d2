#include "check/Report.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "BuildSettings.h"

namespace Check {
namespace {

const char* WordFor(Status status) {
  switch (status) {
    case Status::kOk:
      return "ok";
    case Status::kFailed:
      return "failed";
    case Status::kSkipped:
      break;
  }
  return "skipped";
}

std::ptrdiff_t Count(const std::vector<Verdict>& verdicts, Status status) {
  return std::count_if(verdicts.begin(), verdicts.end(),
                       [&](const Verdict& verdict) { return verdict.status == status; });
}

// A line of a log and a name may contain control characters, which a terminal would execute.
std::string Printable(std::string_view text) {
  std::string printable(text);
  for (char& c : printable) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
  }
  return printable;
}

// The length of the UTF-8 sequence at the front of `text`, or 0 if there is none.
std::size_t Utf8Length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  std::size_t length = 0;
  if (first < 0x80) length = 1;
  if (first >= 0xC2 && first <= 0xDF) length = 2;
  if (first >= 0xE0 && first <= 0xEF) length = 3;
  if (first >= 0xF0 && first <= 0xF4) length = 4;
  if (length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  if (length < 3) return length;
  // Overlong forms, halves of surrogate pairs, and numbers above U+10FFFF.
  const unsigned char second = byte(1);
  const bool valid = !(first == 0xE0 && second < 0xA0) && !(first == 0xED && second > 0x9F) &&
                     !(first == 0xF0 && second < 0x90) && !(first == 0xF4 && second > 0x8F);
  return valid ? length : 0;
}

std::string VerdictJson(const Verdict& verdict) {
  std::string json = "{\"number\":" + std::to_string(NumberOf(verdict.step)) +
                     ",\"name\":" + QuotedJson(StepOf(verdict.step).name) +
                     ",\"status\":" + QuotedJson(WordFor(verdict.status)) +
                     ",\"text\":" + QuotedJson(verdict.text) +
                     ",\"action\":" + QuotedJson(verdict.action) + ",\"details\":[";
  for (const std::string& detail : verdict.details) {
    if (json.back() != '[') json.push_back(',');
    json += QuotedJson(detail);
  }
  return json + "]}";
}

std::string VariableJson(const SnmpBinding& binding) {
  const bool isNumber = binding.kind == SnmpBinding::Kind::kNumber;
  return "{\"name\":" + QuotedJson(VariableNameOf(binding.oid)) +
         ",\"oid\":" + QuotedJson(DottedText(binding.oid)) +
         ",\"value\":" + (isNumber ? std::to_string(binding.number) : QuotedJson(binding.text)) +
         '}';
}

}  // namespace

std::string TextReport(const std::vector<Verdict>& verdicts) {
  std::string report;
  for (const Verdict& verdict : verdicts) {
    char head[40];
    static_cast<void>(std::snprintf(head, sizeof head, "%-9s %2zu %-12s",
                                    (std::string("[") + WordFor(verdict.status) + ']').c_str(),
                                    NumberOf(verdict.step), StepOf(verdict.step).name));
    report += head + Printable(verdict.text);
    if (!verdict.action.empty()) report += " To do: " + Printable(verdict.action);
    report += '\n';
    for (const std::string& detail : verdict.details) {
      report += std::string(13, ' ') + Printable(detail) + '\n';
    }
  }
  return report + std::to_string(Count(verdicts, Status::kOk)) + " ok, " +
         std::to_string(Count(verdicts, Status::kFailed)) + " failed, " +
         std::to_string(Count(verdicts, Status::kSkipped)) + " skipped\n";
}

std::string JsonReport(const std::vector<Verdict>& verdicts, const Facts& facts) {
  std::string json = "{\"version\":" + QuotedJson(CORVANE_VERSION_TEXT) +
                     ",\"agent_version\":" + QuotedJson(facts.dll.image.version) +
                     ",\"failed\":" + std::to_string(Count(verdicts, Status::kFailed)) +
                     ",\"skipped\":" + std::to_string(Count(verdicts, Status::kSkipped)) +
                     ",\"steps\":[";
  for (const Verdict& verdict : verdicts) {
    if (json.back() != '[') json.push_back(',');
    json += VerdictJson(verdict);
  }
  json += "],\"variables\":[";
  for (const SnmpBinding& binding : facts.answer.response.bindings) {
    const bool isRead =
        binding.kind == SnmpBinding::Kind::kNumber || binding.kind == SnmpBinding::Kind::kText;
    if (!isRead || VariableNameOf(binding.oid).empty()) continue;
    if (json.back() != '[') json.push_back(',');
    json += VariableJson(binding);
  }
  return json + "]}\n";
}

int ExitStatus(const std::vector<Verdict>& verdicts) {
  return Count(verdicts, Status::kFailed) == 0 ? 0 : 1;
}

std::string VersionText(const Facts& facts) {
  const std::string program = std::string("corvane-check ") + CORVANE_VERSION_TEXT + '\n';
  const auto entries = OwnEntries(facts.registration);
  if (entries.empty() || entries.front()->path.empty()) {
    return program + "SNMPd.dll: not registered\n";
  }
  const std::string& version = facts.dll.image.version;
  return program + "SNMPd.dll " + (version.empty() ? "of unknown version" : version) + " (" +
         Printable(entries.front()->path) + ")\n";
}

std::string StepTable() {
  std::string table = "| step | look at | must be | if not |\n|---|---|---|---|\n";
  std::size_t number = 0;
  for (const Step& step : kSteps) {
    table += "| " + std::to_string(++number) + ' ' + step.name + " | " + step.lookAt + " | " +
             step.mustBe + " | " + step.ifNot + " |\n";
  }
  return table;
}

std::string QuotedJson(std::string_view text) {
  std::string json = "\"";
  while (!text.empty()) {
    const std::size_t length = Utf8Length(text);
    const char first = text[0];
    if (length == 0) {
      json += "\\ufffd";
    } else if (first == '"' || first == '\\') {
      json += {'\\', first};
    } else if (static_cast<unsigned char>(first) < 0x20) {
      char escape[8];
      static_cast<void>(
          std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(first)));
      json += escape;
    } else {
      json += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return json + '"';
}

}  // namespace Check
