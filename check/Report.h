#pragma once

#include <string>
#include <vector>

#include "check/Facts.h"
#include "check/Verdicts.h"

namespace Check {

// Returns the verdicts as lines: one for each step, and below it indented lines with its details.
// The last line counts the verdicts.
[[nodiscard]] std::string TextReport(const std::vector<Verdict>& verdicts);

// Returns the verdicts as one JSON object, with a line feed at its end.
[[nodiscard]] std::string JsonReport(const std::vector<Verdict>& verdicts, const Facts& facts);

// 0 if no step failed, otherwise 1.
[[nodiscard]] int ExitStatus(const std::vector<Verdict>& verdicts);

// Returns the text of --version.
[[nodiscard]] std::string VersionText(const Facts& facts);

// The rows of the guide's table, with its heading.
[[nodiscard]] std::string StepTable();

// A text in quotes, for JSON. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string QuotedJson(std::string_view text);

}  // namespace Check
