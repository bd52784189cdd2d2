#include "host/Options.h"

#include <cstddef>

namespace Host {
namespace {

// The shortest pass phrase that SNMPv3 allows (RFC 3414, section 11.2).
constexpr std::size_t kShortestPassPhrase = 8;

// Some values become words of a configuration line of net-snmp's, in which these
// characters have a meaning of their own.
bool IsPlainWord(const std::string& text) {
  return text.find_first_of(" \t\r\n\"'#\\") == std::string::npos;
}

std::string StoreUser(Options& options, const std::string& text) {
  if (!options.user.empty()) return "--user may be given only once";
  const std::size_t colon = text.find(':');
  if (colon == 0 || colon == std::string::npos) return "--user takes NAME:PASSPHRASE";
  options.user = text.substr(0, colon);
  options.passPhrase = text.substr(colon + 1);
  if (!IsPlainWord(text)) return "--user takes no blanks, quotes, '#' or '\\'";
  if (options.passPhrase.size() < kShortestPassPhrase) {
    return "--user takes a pass phrase of at least 8 characters";
  }
  return {};
}

// Stores the value of one option. Returns an error, or an empty text if the value
// is good.
std::string Store(Options& options, const std::string& name, const std::string& value) {
  if (value.empty()) return "the value of " + name + " is empty";
  if (name == "--listen") {
    options.listen.push_back(value);
  } else if (name == "--community") {
    if (!IsPlainWord(value)) return "--community takes no blanks, quotes, '#' or '\\'";
    options.communities.push_back(value);
  } else if (name == "--trap-sink") {
    options.trapSinks.push_back(value);
  } else if (name == "--agentx") {
    if (!options.agentxSocket.empty()) return "--agentx may be given only once";
    options.agentxSocket = value;
  } else {
    return StoreUser(options, value);
  }
  return {};
}

bool IsValueOption(const std::string& name) {
  return name == "--listen" || name == "--community" || name == "--trap-sink" ||
         name == "--agentx" || name == "--user";
}

std::string StoreModule(Options& options, const std::string& path) {
  if (path.empty()) return "the module's path is empty";
  if (!options.module.empty()) {
    return "only one module is allowed: '" + options.module + "' or '" + path + "'";
  }
  options.module = path;
  return {};
}

// Returns what is wrong with the options as a whole; empty if nothing is.
std::string WhyNoModule(const Options& options) {
  if (options.help || options.version) return {};
  if (options.registered && !options.module.empty()) {
    return "--registered finds the module itself: leave out '" + options.module + "'";
  }
  const bool named = options.registered || !options.module.empty();
  return named ? "" : "no module: name SNMPd.so or SNMPd.dll";
}

// Returns what is wrong with the options beside --agentx; empty if nothing is.
std::string WhyNoSubagent(const Options& options) {
  if (options.agentxSocket.empty()) return {};
  const char* const superfluous = !options.listen.empty()        ? "--listen"
                                  : !options.communities.empty() ? "--community"
                                  : !options.user.empty()        ? "--user"
                                  : !options.trapSinks.empty()   ? "--trap-sink"
                                                                 : nullptr;
  if (superfluous == nullptr) return {};
  return std::string("with --agentx, the settings of snmpd hold: leave out ") + superfluous;
}

void AddDefaults(Options& options) {
  if (!options.agentxSocket.empty()) return;
  if (options.listen.empty()) options.listen = {"udp:127.0.0.1:1161"};
  if (options.communities.empty()) options.communities = {"public"};
}

}  // namespace

ParsedOptions ParseOptions(const std::vector<std::string>& arguments) {
  ParsedOptions result;
  for (std::size_t i = 0; i < arguments.size() && result.error.empty(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help") {
      result.options.help = true;
    } else if (argument == "--version") {
      result.options.version = true;
    } else if (argument == "--registered") {
      result.options.registered = true;
    } else if (argument.empty() || argument[0] != '-') {
      result.error = StoreModule(result.options, argument);
    } else if (!IsValueOption(argument)) {
      result.error = "unknown option '" + argument + "'";
    } else if (i + 1 == arguments.size()) {
      result.error = argument + " needs a value";
    } else {
      result.error = Store(result.options, argument, arguments[++i]);
    }
  }
  if (result.error.empty()) result.error = WhyNoModule(result.options);
  if (result.error.empty()) result.error = WhyNoSubagent(result.options);
  AddDefaults(result.options);
  return result;
}

const char* HelpText() {
  return "Usage: snmphost [OPTION]... MODULE\n"
         "   or: snmphost [OPTION]... --registered\n"
         "\n"
         "Loads an SNMP extension agent as the Windows SNMP service does, and answers\n"
         "SNMPv1, SNMPv2c and SNMPv3 managers with its variables.\n"
         "\n"
         "  --registered            load the agent that is registered with the SNMP service\n"
         "                          in the registry, instead of MODULE (under Wine only)\n"
         "  --listen ADDRESS        listen on this address (default: udp:127.0.0.1:1161). Begin\n"
         "                          it with udp:, tcp:, udp6:, tcp6: or unix:, for example\n"
         "                          udp6:[::1]:1161 or unix:/run/snmphost. May be repeated\n"
         "  --community TEXT        a community that may read and write (default: public). May\n"
         "                          be repeated; traps carry the first one\n"
         "  --user NAME:PASSPHRASE  an SNMPv3 user (SHA, AES, the same pass phrase for both).\n"
         "                          For tests only: every user who can list the processes\n"
         "                          can read the pass phrase\n"
         "  --trap-sink HOST:PORT   send SNMPv1 traps to this receiver; may be repeated\n"
         "  --agentx SOCKET         be a subagent of the snmpd behind this AgentX socket,\n"
         "                          which then does all of the above with its own settings.\n"
         "                          While snmpd is away, up to 1000 traps wait for its return\n"
         "  --help                  print this text\n"
         "  --version               print the version\n"
         "\n"
         "On SIGINT, SIGTERM and SIGHUP it unloads the module and ends with status 0.\n"
         "\n"
         "The exit status is 0 after a signal, --help and --version, 1 if it cannot load the\n"
         "module or cannot listen, and 2 if an argument is wrong.\n";
}

}  // namespace Host
