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

// Signalled once, by the first SIGINT or SIGTERM.
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

// Starts the module and prints what is served and where.
void StartModule(ExtensionModule& module, const Options& options, SnmpFront& front) {
  Oid view;
  if (!module.Start(view)) {
    Complain(0, options.module, ": its start failed; the host serves it nevertheless");
  }
  if (view.empty() || !front.Serve(view)) {
    Complain(0, options.module, ": cannot serve its view [", ToText(view), "]");
    return;
  }
  const std::string& where = options.agentxSocket.empty() ? options.listen : options.agentxSocket;
  Say("Serving " + ToText(view) + " at " + where);
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
  std::string error;
  if (options.registered && !FindModule(options)) return kCannotServe;
  const std::unique_ptr<ExtensionModule> module = ExtensionModule::Load(options.module, error);
  if (module == nullptr) return Complain(kCannotServe, options.module, ": ", error);
  SnmpFront front(options, *module);
  if (!front.Open(error)) return Complain(kCannotServe, error);

  stopEvent = Vask::Platform::SystemThreading().CreateEvent(Vask::Platform::EventReset::Manual);
  if (stopEvent == nullptr)
    return Complain(kCannotServe, "cannot create the event that stops the host");
  static_cast<void>(std::signal(SIGINT, Stop));
  static_cast<void>(std::signal(SIGTERM, Stop));
  StartModule(*module, options, front);
  front.Run(Vask::Platform::EventDescriptor(stopEvent));
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
