#pragma once

#include <string>
#include <string_view>

namespace Simulator {

// A message as it travels: what it is called and what it says, as JSON.
struct Message {
  std::string name;
  std::string data;
};

// The text of a message from the Corvane process. `data` is put in as it is.
[[nodiscard]] std::string WriteEnvelope(std::string_view name, std::string_view data);

// Takes a received text apart. The name is empty, and the data the whole text,
// when it is no envelope.
[[nodiscard]] Message ReadEnvelope(const std::string& text);

}  // namespace Simulator
