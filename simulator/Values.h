#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator {

// The messages that together answer one request for an update.
enum class Group { Product, Streams, StreamMonitors, AudioSources };
inline constexpr std::array kGroups{Group::Product, Group::Streams, Group::StreamMonitors,
                                    Group::AudioSources};

// The group's name in a message: "Product", "Streams", …
const char* GroupName(Group group);

// What the Corvane process would report: one value per name, texts and signed
// 32-bit whole numbers. Limits that the agent sets on them are not checked, so
// that it can be sent what it has to refuse.
//
// Not synchronised.
class Values {
 public:
  Values();

  // Names are found without regard to case. On failure nothing changes and
  // `error` says why, as a phrase.
  [[nodiscard]] bool Set(std::string_view name, std::string_view text, std::string& error);

  // The body of the group's SNMPmessage, as JSON.
  [[nodiscard]] std::string Body(Group group) const;

  // "Name = value" for every value, in a fixed order.
  [[nodiscard]] std::vector<std::string> Lines() const;

  // All names, for a help text: each with `indent` before it and, except the
  // last, `separator` after it.
  [[nodiscard]] static std::string Names(const char* separator = " ", const char* indent = "");

 private:
  static constexpr std::size_t kCount = 10;
  // Numbers as their decimal text.
  std::array<std::string, kCount> m_texts;
};

}  // namespace Simulator
