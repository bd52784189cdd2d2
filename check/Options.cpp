#include "check/Options.h"

#include <charconv>

namespace Check {
namespace {

// The longest community that Windows' dialogue accepts is shorter.
constexpr std::size_t kLongestCommunity = 255;

bool ReadPort(const std::string& text, std::uint16_t& port) {
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), port);
  return fault == std::errc{} && end == text.data() + text.size() && port != 0;
}

// Stores the value of one option. Returns an error, or an empty text if the value is good.
std::string Store(Options& options, const std::string& name, const std::string& value) {
  if (name == "--port") {
    return ReadPort(value, options.port) ? "" : "--port takes a number from 1 to 65535";
  }
  if (value.empty()) return name + " takes a value that is not empty";
  if (name == "--manager") {
    options.manager = value;
    return {};
  }
  if (value.size() > kLongestCommunity) return "--community takes at most 255 bytes";
  options.community = value;
  return {};
}

bool* Flag(Options& options, const std::string& name) {
  if (name == "--no-traps") return &options.noTraps;
  if (name == "--json") return &options.json;
  if (name == "--steps") return &options.steps;
  if (name == "--help") return &options.help;
  if (name == "--version") return &options.version;
  return nullptr;
}

}  // namespace

ParsedOptions ParseOptions(const std::vector<std::string>& arguments) {
  ParsedOptions result;
  for (std::size_t i = 0; i < arguments.size() && result.error.empty(); ++i) {
    const std::string& name = arguments[i];
    if (bool* const flag = Flag(result.options, name)) {
      *flag = true;
    } else if (name != "--community" && name != "--port" && name != "--manager") {
      result.error = "unknown argument '" + name + "'";
    } else if (i + 1 == arguments.size()) {
      result.error = name + " needs a value";
    } else {
      result.error = Store(result.options, name, arguments[++i]);
    }
  }
  return result;
}

std::string HelpText() {
  return "corvane-check [OPTION]...\n"
         "\n"
         "Checks, on the server, each step from the Windows SNMP service to the answer of the\n"
         "Corvane SNMP agent. Prints one line for each step:\n"
         "\n"
         "  [ok]       as it must be\n"
         "  [failed]   what is wrong, and what to do\n"
         "  [skipped]  what could not be checked, and why\n"
         "\n"
         "It changes nothing and does not load the agent. Without administrator rights it\n"
         "skips what it cannot read. It sends one SNMP request to 127.0.0.1, and repeats it\n"
         "once after 2 seconds.\n"
         "\n"
         "  --community NAME   the community of the request; without it, the first community of\n"
         "                     the service that has the right to read. Other users can see the\n"
         "                     arguments of a program\n"
         "  --port NUMBER      the UDP port of the request (161)\n"
         "  --manager ADDRESS  the manager that must be permitted, written as in the service's\n"
         "                     list; without it, any manager other than this machine\n"
         "  --no-traps         this server sends no traps: skip the trap destinations\n"
         "  --json             print one JSON object instead of lines\n"
         "  --steps            print the steps as the table of the operator's guide\n"
         "  --version          print the versions of this program and of the registered agent\n"
         "  --help             print this text\n"
         "\n"
         "The JSON object has these keys:\n"
         "\n"
         "  version        version of this program\n"
         "  agent_version  version of the registered DLL, \"\" if it is unknown\n"
         "  failed         number of steps that failed\n"
         "  skipped        number of steps that were skipped\n"
         "  steps          one object for each step, in order: \"number\", \"name\", \"status\"\n"
         "                 (\"ok\", \"failed\" or \"skipped\"), \"text\", \"action\" (what to do, "
         "\"\" unless\n"
         "                 failed) and \"details\" (a list of texts)\n"
         "  variables      one object for each variable that was read: \"name\", \"oid\", and\n"
         "                 \"value\" (a number or a text)\n"
         "\n"
         "Exit status: 0 if no step failed, 1 if a step failed, 2 if an argument is wrong.\n";
}

}  // namespace Check
