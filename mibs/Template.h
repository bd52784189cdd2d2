#pragma once

#include <string>

namespace Mibs {

// Fills in a template with what the agent's tables say (Facts.h), so that no
// file for a monitoring system repeats a number by hand.
//
//   @{prefix}                    a fact about the agent
//   @{StreamsErrors.instance}    a fact about that variable or trap
//   @each trap                   a line of its own: the lines from here up to a
//   @end                         line "@end" are repeated for each trap; in them
//   @{number}                    is a fact about the trap at hand
//
// Besides `trap` there are `variable`, `number` (an integer variable) and `text`.
// Such blocks do not lie in each other. All else stays as it stands; a word that
// nobody knows throws std::invalid_argument and names it.
[[nodiscard]] std::string FillTemplate(const std::string& text);

}  // namespace Mibs
