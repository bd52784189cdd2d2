#pragma once

#include <string>

namespace Simulator {

enum class LineState {
  Read,     // there is a line
  Ended,    // there will be none any more
  Nothing,  // none has come yet
};

// Where commands come from.
class ILineSource {
 public:
  virtual ~ILineSource() = default;
  // The next line without its line end; waits for one a short while only.
  virtual LineState NextLine(std::string& line) = 0;
};

}  // namespace Simulator
