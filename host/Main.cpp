#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "BuildSettings.h"
#include "host/ExtensionModule.h"
#include "host/Options.h"
#include "host/Registration.h"
#include "host/SnmpFront.h"
#include "platform/Threading.h"
#include "platform/linux/EventDescriptor.h"

namespace {

using namespace Host;

// Exit statuses other than 0.
constexpr int kCannotServe = 1;
constexpr int kBadCommandLine = 2;

// Signalled once, by the first signal that ends the host.
Vask::Platform::NativeHandle stopEvent = nullptr;

extern "C" void Stop(int) {
  Vask::Platform::SystemThreading().SetEvent(stopEvent);
}

template <class... Texts>
int Complain(int status, const Texts&... texts) {
  const std::string line = (std::string("snmphost: ") + ... + std::string(texts));
  static_cast<void>(std::fprintf(stderr, "%s\n", line.c_str()));
  return status;
}

// Prints a line at once, because scripts wait for it.
void Say(const std::string& line) {
  static_cast<void>(std::fputs((line + '\n').c_str(), stdout));
  static_cast<void>(std::fflush(stdout));
}

// Returns whether the host can be stopped from now on.
bool CatchSignals() {
  stopEvent = Vask::Platform::SystemThreading().CreateEvent(Vask::Platform::EventReset::Manual);
  if (stopEvent == nullptr) return false;
  static_cast<void>(std::signal(SIGINT, Stop));
  static_cast<void>(std::signal(SIGTERM, Stop));
  // nohup ignores this signal, and that must stay.
  if (std::signal(SIGHUP, Stop) == SIG_IGN) static_cast<void>(std::signal(SIGHUP, SIG_IGN));
  // A manager may close its connection before the response.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  return true;
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

// Starts the module and prints what is served and where.
void StartModule(ExtensionModule& module, const Options& options, SnmpFront& front) {
  Oid view;
  if (!module.Start(view)) {
    Complain(0, options.module, ": its start failed; the host serves it nevertheless");
  }
  if (view.empty() || !front.Serve(module, view)) {
    Complain(0, options.module, ": cannot serve its view [", ToText(view), "]");
    return;
  }
  const bool isSubagent = !options.agentxSocket.empty();
  Say("Serving " + ToText(view) + " at " +
      (isSubagent ? options.agentxSocket : Joined(options.listen)));
}

// Stores the registered agent's path in the options. False if there is none.
bool FindModule(Options& options) {
  const Registry* const registry = SystemRegistry();
  if (registry == nullptr) {
    Complain(0,
             "--registered needs the Windows registry: "
             "use snmphost-wine, or name the module");
    return false;
  }
  const Registration registration = FindRegisteredAgent(*registry);
  for (const std::string& complaint : registration.complaints) Complain(0, complaint);
  if (registration.path.empty()) return false;
  options.module = registration.path;
  Say(registration.name + " is registered: " + registration.path);
  return true;
}

int Serve(Options& options) {
  if (!CatchSignals()) return Complain(kCannotServe, "cannot create the event that stops the host");
  if (options.registered && !FindModule(options)) return kCannotServe;
  std::unique_ptr<ExtensionModule> module;  // outlives the front, which calls it
  SnmpFront front(options);
  std::string error;
  // A module that is loaded and never started may log its end, which only confuses.
  if (!front.Open(error)) return Complain(kCannotServe, error);
  module = ExtensionModule::Load(options.module, error);
  if (module == nullptr) return Complain(kCannotServe, options.module, ": ", error);
  StartModule(*module, options, front);
  front.Run(*module, Vask::Platform::EventDescriptor(stopEvent));
  Say("Stopping");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  ParsedOptions parsed = ParseOptions({argv + 1, argv + argc});
  if (!parsed.error.empty()) {
    return Complain(kBadCommandLine, parsed.error, " (see snmphost --help)");
  }
  if (parsed.options.help) {
    static_cast<void>(std::fputs(HelpText(), stdout));
    return 0;
  }
  if (parsed.options.version) {
    Say("snmphost " CORVANE_VERSION_TEXT);
    return 0;
  }
  return Serve(parsed.options);
}
