// corvane-check: checks an installed agent on its server. See Options.cpp for its arguments.

#include "check/win32/System.h"

#include <shellapi.h>

#include <cstdio>
#include <exception>

#include "check/Report.h"
#include "check/Steps.h"
#include "check/win32/Gather.h"

namespace Check {

Facts GatherRegistration() {
  Facts facts;
  GatherAgent(facts);
  return facts;
}

Facts Gather(const Options& options) {
  Facts facts;
  GatherService(facts);
  GatherAgent(facts);
  GatherSettings(facts);
  GatherLink(facts);
  GatherLog(facts);
  GatherAnswer(options, facts);
  GatherFirewall(facts);
  return facts;
}

namespace {

constexpr int kWrongArgument = 2;

std::vector<std::string> Arguments() {
  std::vector<std::string> arguments;
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = 1; i < count; ++i) arguments.push_back(Narrow(words[i]));
  LocalFree(words);
  return arguments;
}

// A console shows the text as it is; a file or a pipe gets UTF-8.
bool Print(DWORD stream, const std::string& text) {
  const HANDLE output = GetStdHandle(stream);
  DWORD mode = 0;
  DWORD written = 0;
  if (GetConsoleMode(output, &mode)) {
    const std::wstring wide = Wide(text);
    return WriteConsoleW(output, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
  }
  return WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

int Run() {
  const ParsedOptions parsed = ParseOptions(Arguments());
  const Options& options = parsed.options;
  if (!parsed.error.empty()) {
    Print(STD_ERROR_HANDLE, "corvane-check: " + parsed.error + "\nSee corvane-check --help.\n");
    return kWrongArgument;
  }
  std::string text;
  int status = 0;
  if (options.help) {
    text = HelpText();
  } else if (options.version) {
    text = VersionText(GatherRegistration());
  } else if (options.steps) {
    text = StepTable();
  } else {
    const Facts facts = Gather(options);
    const std::vector<Verdict> verdicts = Judge(facts, options);
    text = options.json ? JsonReport(verdicts, facts) : TextReport(verdicts);
    status = ExitStatus(verdicts);
  }
  return Print(STD_OUTPUT_HANDLE, text) ? status : 1;
}

}  // namespace
}  // namespace Check

int main() {
  try {
    return Check::Run();
  } catch (const std::exception& fault) {
    static_cast<void>(std::fprintf(stderr, "corvane-check: %s\n", fault.what()));
    return 1;
  }
}
