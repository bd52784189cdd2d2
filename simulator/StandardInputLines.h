#pragma once

#include "simulator/LineSource.h"

namespace Simulator {

// The lines of standard input. A thread of its own reads them, since a read from
// a terminal cannot be ended from elsewhere; it and what it holds live until the
// process ends, which must not be by returning from main. One per process.
class StandardInputLines final : public ILineSource {
 public:
  StandardInputLines();
  LineState NextLine(std::string& line) override;

 private:
  struct Shared;
  Shared* const m_shared;  // for the life of the process
};

}  // namespace Simulator
