#include "simulator/Values.h"

#include <cstdint>

#include "simulator/Text.h"

namespace Simulator {

namespace {

enum class Kind { Text, Number };

struct ValueRow {
  const char* name;
  Group group;
  const char* member;  // within the group's object
  Kind kind;
  const char* initial;
};

constexpr std::array kRows{
    ValueRow{"ProductName", Group::Product, "Name", Kind::Text, "Corvane"},
    ValueRow{"ProductVersion", Group::Product, "Version", Kind::Text, "1.0.0"},
    ValueRow{"StreamsCount", Group::Streams, "Count", Kind::Number, "12"},
    ValueRow{"StreamsErrors", Group::Streams, "Errors", Kind::Number, "0"},
    ValueRow{"StreamMonitorsCount", Group::StreamMonitors, "Count", Kind::Number, "4"},
    ValueRow{"StreamMonitorsErrors", Group::StreamMonitors, "Errors", Kind::Number, "0"},
    ValueRow{"StreamMonitorsSilence", Group::StreamMonitors, "Silence", Kind::Number, "0"},
    ValueRow{"AudioSourcesCount", Group::AudioSources, "Count", Kind::Number, "6"},
    ValueRow{"AudioSourcesErrors", Group::AudioSources, "Errors", Kind::Number, "0"},
    ValueRow{"AudioSourcesSilence", Group::AudioSources, "Silence", Kind::Number, "0"},
};

bool ToNumberText(std::string_view text, std::string& out, std::string& error) {
  std::int32_t number = 0;
  if (!ParseWhole(text, number)) {
    error =
        "expected a whole number from -2147483648 to 2147483647, not \"" + std::string(text) + "\"";
    return false;
  }
  out = std::to_string(number);
  return true;
}

}  // namespace

const char* GroupName(Group group) {
  switch (group) {
    case Group::Product:
      return "Product";
    case Group::Streams:
      return "Streams";
    case Group::StreamMonitors:
      return "StreamMonitors";
    case Group::AudioSources:
      break;
  }
  return "AudioSources";
}

Values::Values() {
  static_assert(kRows.size() == kCount);
  for (std::size_t i = 0; i < kCount; ++i) m_texts[i] = kRows[i].initial;
}

bool Values::Set(std::string_view name, std::string_view text, std::string& error) {
  for (std::size_t i = 0; i < kCount; ++i) {
    if (!EqualsIgnoringCase(name, kRows[i].name)) continue;
    if (kRows[i].kind == Kind::Number) return ToNumberText(text, m_texts[i], error);
    m_texts[i] = text;
    return true;
  }
  error = "unknown value \"" + std::string(name) + "\"; the values are " + Names();
  return false;
}

std::string Values::Body(Group group) const {
  std::string members;
  for (std::size_t i = 0; i < kCount; ++i) {
    if (kRows[i].group != group) continue;
    if (!members.empty()) members += ',';
    members += Quoted(kRows[i].member) + ':';
    members += kRows[i].kind == Kind::Text ? Quoted(m_texts[i]) : m_texts[i];
  }
  return "{\"messageType\":{" + Quoted(GroupName(group)) + ":{" + members + "}}}";
}

std::vector<std::string> Values::Lines() const {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < kCount; ++i) {
    lines.push_back(std::string(kRows[i].name) + " = " + m_texts[i]);
  }
  return lines;
}

std::string Values::Names(const char* separator, const char* indent) {
  std::string names;
  for (const ValueRow& row : kRows) {
    if (!names.empty()) names += separator;
    names += std::string(indent) + row.name;
  }
  return names;
}

}  // namespace Simulator
