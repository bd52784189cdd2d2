#pragma once

#include <string>

namespace Mibs {

// The text of the management module, made from the agent's tables and the
// build's enterprise number.
//
// SMIv2 (RFC 2578): what every present manager loads.
[[nodiscard]] std::string SmiV2Module();
// SMIv1 with TRAP-TYPE (RFC 1212, RFC 1215): for managers that import nothing
// else. Never both in one folder, since they define the same names.
[[nodiscard]] std::string SmiV1Module();

// Parts that both have in common.
[[nodiscard]] std::string Quoted(const std::string& text);
[[nodiscard]] std::string BranchLines();
// The lines that snmpttconvertmib and its kin read.
[[nodiscard]] std::string TranslatorLines(const char* trapName);
// First line: the whole sentence.
[[nodiscard]] std::string NotificationText(const char* trapName);
// The type in the words of either version; `integer` is its name for integers.
[[nodiscard]] std::string Syntax(const char* variableName, const char* integer);

}  // namespace Mibs
