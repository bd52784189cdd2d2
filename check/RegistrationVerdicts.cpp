// The steps from the service to the DLL in its process.

#include <algorithm>

#include "BuildSettings.h"
#include "check/Access.h"
#include "check/VerdictParts.h"
#include "json/Ascii.h"

namespace Check {
namespace {

constexpr char kAgentsKey[] =
    R"(HKLM\SYSTEM\CurrentControlSet\Services\SNMP\Parameters\ExtensionAgents)";
constexpr char kAgentKey[] = R"(SOFTWARE\Veltrin Systems\Corvane SNMP\CurrentVersion)";
constexpr char kModule[] = "SNMPd.dll";

constexpr char kInstallService[] =
    "install the Windows feature SNMP Service: on Windows Server run \"Install-WindowsFeature "
    "SNMP-Service -IncludeManagementTools\" in PowerShell.";

constexpr std::string_view kTrapKey = "TrapConfiguration";
constexpr std::size_t kMostEvents = 5;

constexpr std::uint32_t kAutomatic = 2;
constexpr std::uint32_t kManual = 3;
constexpr std::uint32_t kDisabled = 4;

// For every type but the automatic one.
std::string StartWord(std::uint32_t type) {
  switch (type) {
    case kManual:
      return "manual";
    case kDisabled:
      return "disabled";
    default:
      return "unknown (" + std::to_string(type) + ")";
  }
}

const char* StateWord(ServiceFacts::State state) {
  switch (state) {
    case ServiceFacts::State::kStarting:
      return "starting";
    case ServiceFacts::State::kStopping:
      return "stopping";
    case ServiceFacts::State::kPaused:
      return "paused";
    default:
      return "stopped";
  }
}

std::string FileNameOf(const std::string& path) {
  return path.substr(path.find_last_of("\\/") + 1);  // npos + 1 is 0
}

// A key may be written with backslashes around it.
std::string Trimmed(const std::string& key) {
  const std::size_t first = key.find_first_not_of('\\');
  if (first == std::string::npos) return {};
  return key.substr(first, key.find_last_not_of('\\') - first + 1);
}

// Empty if there is none, or no full one.
std::string PathOf(const Facts& facts) {
  const auto entries = OwnEntries(facts.registration);
  return entries.empty() || !IsFullPath(entries.front()->path) ? "" : entries.front()->path;
}

bool FileIsThere(const Facts& facts) {
  return !PathOf(facts).empty() && facts.dll.whyUnknown.empty() && facts.dll.exists;
}

// A key of trap destinations has the name of its community, which is a password. A community may
// hold any character, so the text ends before it.
std::string WithoutCommunity(const std::string& event) {
  const std::string key = std::string(kTrapKey) + '\\';
  const auto found = std::search(
      event.begin(), event.end(), key.begin(), key.end(),
      [](char one, char other) { return Vask::FoldAscii(one) == Vask::FoldAscii(other); });
  if (found == event.end()) return event;
  return std::string(event.begin(), found) + key + "...";
}

std::string MachineWord(std::uint16_t machine) {
  if (machine == kMachineX86) return "a 32-bit DLL";
  if (machine == kMachineArm64) return "a DLL for ARM64";
  return "a DLL for another kind of machine (number " + std::to_string(machine) + ")";
}

}  // namespace

std::vector<const AgentEntry*> OwnEntries(const RegistrationFacts& registration) {
  std::vector<const AgentEntry*> own;
  for (const AgentEntry& entry : registration.agents) {
    if (Vask::EqualsIgnoringCase(Trimmed(entry.key), kAgentKey)) own.push_back(&entry);
  }
  if (!own.empty()) return own;
  // Another maker's agent may have a file of the same name.
  for (const AgentEntry& entry : registration.agents) {
    if (Vask::EqualsIgnoringCase(FileNameOf(entry.path), kModule)) own.push_back(&entry);
  }
  return own;
}

bool IsFullPath(std::string_view path) {
  if (path.substr(0, 2) == R"(\\)") return true;
  const char drive = path.empty() ? '\0' : Vask::FoldAscii(path[0]);
  return drive >= 'a' && drive <= 'z' && path.substr(1, 2) == R"(:\)";
}

Verdict JudgeService(const Facts& facts) {
  const ServiceFacts& service = facts.service;
  constexpr StepId kStep = StepId::kService;
  if (service.state == ServiceFacts::State::kUnknown) {
    return Skipped(kStep, "The service SNMP cannot be queried: " + service.whyUnknown + '.');
  }
  if (service.state == ServiceFacts::State::kMissing) {
    return Failed(kStep, "The service SNMP is not installed.", kInstallService);
  }
  const std::uint32_t start = service.startType.value_or(kAutomatic);
  if (!service.Runs()) {
    const std::string text = std::string("The service SNMP is ") + StateWord(service.state) + '.';
    if (start == kDisabled) {
      return Failed(kStep, text + " Its start type is disabled.",
                    "run \"sc.exe config SNMP start= auto\", then \"net start SNMP\".");
    }
    return Failed(kStep, text, "run \"net start SNMP\".");
  }
  std::string text = "The service SNMP runs as " + service.account + ", process " +
                     std::to_string(service.processId);
  if (!service.startedAt.empty()) text += ", since " + service.startedAt;
  text += '.';
  if (start != kAutomatic) {
    return Failed(
        kStep,
        text + " Its start type is " + StartWord(start) + ": it does not start with Windows.",
        "run \"sc.exe config SNMP start= auto\".");
  }
  return Ok(kStep, text + (service.startType ? " It starts with Windows." : ""));
}

Verdict JudgeKey(const Facts& facts) {
  constexpr StepId kStep = StepId::kKey;
  if (!facts.registration.whyUnknown.empty()) {
    return Skipped(
        kStep, std::string(kAgentsKey) + " cannot be read: " + facts.registration.whyUnknown + '.');
  }
  const auto entries = OwnEntries(facts.registration);
  if (entries.empty()) {
    return Failed(kStep, std::string("No value of ") + kAgentsKey + " is \"" + kAgentKey + "\".",
                  "install the package.");
  }
  if (entries.size() > 1) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const AgentEntry* entry : entries) names.push_back(entry->name);
    return Failed(kStep,
                  "The agent is registered " + std::to_string(entries.size()) + " times (values " +
                      Joined(names) + "). The service would load it more than once.",
                  std::string("delete all but one of these values of ") + kAgentsKey + '.');
  }
  return Ok(kStep,
            std::string(kAgentsKey) + " names the agent (value " + entries.front()->name + ").");
}

Verdict JudgePath(const Facts& facts) {
  constexpr StepId kStep = StepId::kPath;
  const auto entries = OwnEntries(facts.registration);
  if (entries.empty()) return Skipped(kStep, "The agent is not registered.");
  const AgentEntry& entry = *entries.front();
  const std::string key = "HKLM\\" + Trimmed(entry.key);
  if (entry.path.empty() && entry.in32BitView) {
    return Failed(kStep,
                  key +
                      " is in the 32-bit view of the registry only. The service does not look "
                      "there.",
                  "install the x64 package.");
  }
  if (entry.path.empty()) return Failed(kStep, key + " has no text value Pathname.");
  if (!IsFullPath(entry.path)) return Failed(kStep, entry.path + " is not a full path.");
  return Ok(kStep, entry.path);
}

Verdict JudgeFile(const Facts& facts) {
  constexpr StepId kStep = StepId::kFile;
  const std::string path = PathOf(facts);
  if (path.empty()) return Skipped(kStep, "The full path of the DLL is not known.");
  const FileFacts& dll = facts.dll;
  if (!dll.whyUnknown.empty()) {
    return Skipped(kStep, path + " cannot be read: " + dll.whyUnknown + '.');
  }
  if (!dll.exists) return Failed(kStep, "There is no file " + path + '.');
  std::string text =
      "Version " + (dll.image.version.empty() ? std::string("unknown") : dll.image.version) + '.';
  if (dll.image.version != CORVANE_VERSION_TEXT ".0") {
    text +=
        " This program has version " CORVANE_VERSION_TEXT ": they are not from the same package.";
  }
  if (!dll.access.whyUnknown.empty()) {
    return Ok(kStep, text + " The rights of the service's account could not be read (" +
                         dll.access.whyUnknown + ").");
  }
  if (facts.accountSids.empty()) {
    return Ok(kStep, text + " Whether the service's account may read it is not known.");
  }
  if (!HasRights(dll.access, facts.accountSids, kRightToReadAndExecute)) {
    return Failed(kStep, text + " The account of the service may not read and execute it.",
                  "give the account of the service the right to read and execute " + path + '.');
  }
  return Ok(kStep, text + " The account of the service may read it.");
}

Verdict JudgeImage(const Facts& facts) {
  constexpr StepId kStep = StepId::kImage;
  if (!FileIsThere(facts)) return Skipped(kStep, "There is no file that can be read.");
  const Image& image = facts.dll.image;
  switch (image.kind) {
    case Image::Kind::kUnread:
      return Skipped(kStep, "The file cannot be read.");
    case Image::Kind::kNotAnImage:
      return Failed(kStep, "The file is not a Windows DLL.");
    case Image::Kind::kTruncated:
      return Failed(kStep, "The file is damaged: it is shorter than its headers say.");
    case Image::Kind::kImage:
      break;
  }
  if (image.machine != kMachineX64) {
    return Failed(kStep, "The file is " + MachineWord(image.machine) +
                             ". The service is a 64-bit program and cannot load it.");
  }
  if (!image.isDll) return Failed(kStep, "The file is a program, not a DLL.");
  for (const char* name : {"SnmpExtensionInit", "SnmpExtensionQuery", "SnmpExtensionTrap"}) {
    if (!image.Exports(name)) {
      return Failed(kStep, std::string("The DLL has no function ") + name +
                               ". It is not an extension agent.");
    }
  }
  if (!facts.dll.missingLibraries.empty()) {
    return Failed(kStep,
                  "The DLL needs " + Joined(facts.dll.missingLibraries) + ", which is missing.",
                  "install the x64 package again. If the library is part of Windows, repair "
                  "Windows.");
  }
  return Ok(kStep,
            "A 64-bit DLL with the three functions of an extension agent. Every library "
            "that it needs is there.");
}

Verdict JudgeLoaded(const Facts& facts) {
  constexpr StepId kStep = StepId::kLoaded;
  const std::string path = PathOf(facts);
  if (!facts.service.Runs()) return Skipped(kStep, "The service does not run.");
  if (path.empty()) return Skipped(kStep, "The full path of the DLL is not known.");
  if (!facts.service.whyNoModules.empty()) {
    return Skipped(kStep, "The modules of the service's process cannot be read: " +
                              facts.service.whyNoModules + '.');
  }
  for (const std::string& module : facts.service.modules) {
    if (Vask::EqualsIgnoringCase(module, path)) return Ok(kStep, "The service has loaded the DLL.");
  }
  for (const std::string& module : facts.service.modules) {
    if (!Vask::EqualsIgnoringCase(FileNameOf(module), kModule)) continue;
    return Failed(kStep, "The service has loaded " + module + ", which is not the registered file.",
                  "restart the service.");
  }
  return Failed(kStep, "The service has not loaded the DLL.");
}

Verdict JudgeEvents(const Facts& facts, const Options& options) {
  constexpr StepId kStep = StepId::kEvents;
  if (!facts.service.Runs()) return Skipped(kStep, "The service does not run.");
  if (!facts.eventsUnknown.empty()) {
    return Skipped(kStep, "The System log cannot be read: " + facts.eventsUnknown + '.');
  }
  std::vector<std::string> errors;
  for (const Event& event : facts.events) {
    // Without trap destinations the service complains that their key is missing.
    const bool isWanted = options.noTraps && event.text.find(kTrapKey) != std::string::npos;
    if (event.isError && !isWanted) errors.push_back(WithoutCommunity(event.text));
  }
  if (errors.empty()) {
    return Ok(kStep, "No error of the source SNMP since the service's start.");
  }
  const std::string text =
      std::to_string(errors.size()) + " error(s) of the source SNMP since the service's start.";
  errors.resize(std::min(errors.size(), kMostEvents));
  return Failed(kStep, text, "look at the error, which names the reason.", std::move(errors));
}

}  // namespace Check
