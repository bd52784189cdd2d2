#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator {

// The messages that together answer one update request.
enum class Group { Product, Streams, StreamMonitors, AudioSources };
inline constexpr std::array kGroups{Group::Product, Group::Streams, Group::StreamMonitors,
                                    Group::AudioSources};

// Returns the group's name in a message: "Product", "Streams", …
const char* GroupName(Group group);

// The values that a Corvane process would report: texts and signed 32-bit whole
// numbers, one per name. The agent's limits are not checked, so that a test can
// send values that the agent refuses.
//
// For one thread at a time.
class Values {
 public:
  Values();

  // Ignores the case of names. On failure nothing changes, and `error` is a phrase
  // with the reason.
  [[nodiscard]] bool Set(std::string_view name, std::string_view text, std::string& error);

  // Returns the body of the group's SNMPmessage, as JSON.
  [[nodiscard]] std::string Body(Group group) const;

  // Returns "Name = value" for every value, in a fixed order.
  [[nodiscard]] std::vector<std::string> Lines() const;

  // Returns all names for a help text: `indent` precedes each name, `separator`
  // follows each but the last.
  [[nodiscard]] static std::string Names(const char* separator = " ", const char* indent = "");

 private:
  static constexpr std::size_t kCount = 10;
  // Numbers are kept as decimal text.
  std::array<std::string, kCount> m_texts;
};

}  // namespace Simulator
