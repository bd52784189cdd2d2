#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "check/Access.h"
#include "check/FirewallRules.h"
#include "check/Image.h"
#include "check/LogReader.h"
#include "check/SnmpGet.h"

// What the program finds on a machine, as plain values. check/win32/ fills them in; the verdicts
// only read them. All texts are UTF-8. A `why...` text is empty if the fact beside it is known,
// and otherwise states why it could not be read.
namespace Check {

struct ServiceFacts {
  enum class State { kUnknown, kMissing, kStopped, kStarting, kStopping, kRunning, kPaused };
  State state = State::kUnknown;
  std::string whyUnknown;
  std::uint32_t processId = 0;             // 0 if the service does not run
  std::optional<std::uint32_t> startType;  // Windows' number: 2 automatic, 3 manual, 4 disabled
  std::string account;
  std::string startedAt;             // local time, "2026-11-21 06:00:05"; empty if unknown
  std::vector<std::string> modules;  // paths of the files that its process has loaded
  std::string whyNoModules;

  [[nodiscard]] bool Runs() const { return state == State::kRunning; }
};

// One value of the service's list of extension agents, and the DLL to which it leads.
struct AgentEntry {
  std::string name;          // of the value
  std::string key;           // its text: a key below HKLM
  std::string path;          // the text of that key's value Pathname, expanded; empty if none
  bool in32BitView = false;  // the key is missing, but the 32-bit view of the registry has it
};

struct RegistrationFacts {
  std::vector<AgentEntry> agents;  // all agents, also of other makers
  std::string whyUnknown;
};

// A record of the System log.
struct Event {
  bool isError = false;  // otherwise a warning or an information
  std::string text;
};

struct FileFacts {
  bool exists = false;
  std::string whyUnknown;
  AccessFacts access;
  Image image;
  std::vector<std::string> missingLibraries;  // imports that Windows would not find
};

// The values of one key of the registry.
struct SettingValue {
  std::string name;          // for a trap destination: the community
  std::string text;          // of a text value
  std::uint32_t number = 0;  // of a numeric value
  bool isNumber = false;
};

struct KeyFacts {
  enum class State { kMissing, kUnreadable, kRead };
  State state = State::kMissing;
  std::string whyUnreadable;
  std::vector<SettingValue> values;
};

// One of the service's lists. If the policy has the key, the service uses the policy's list only.
struct SettingFacts {
  KeyFacts policy;
  KeyFacts service;

  [[nodiscard]] bool PolicyHolds() const { return policy.state != KeyFacts::State::kMissing; }
  [[nodiscard]] const KeyFacts& InForce() const { return PolicyHolds() ? policy : service; }
};

// A TCP socket that listens on the link's port, or a connection to that port.
struct TcpSocket {
  std::string address;  // its own address
  std::uint32_t processId = 0;
  std::string process;  // name of the program; empty if unknown
};

struct LinkFacts {
  std::vector<TcpSocket> listeners;
  std::vector<TcpSocket> connections;  // established, to 127.0.0.1 and the link's port
  std::string whyUnknown;
};

struct LogFolderFacts {
  std::string path;
  bool exists = false;
  std::string whyUnknown;
  AccessFacts access;
};

struct LogFacts {
  std::string today;      // "2026-11-21", local
  std::string minuteAgo;  // "2026-11-21 11:59:00", local: a later update may not have arrived yet
  std::size_t files = 0;
  std::string newest;  // name of the newest file
  LogFindings findings;
  std::string whyUnknown;
};

struct AnswerFacts {
  enum class Outcome { kNotAsked, kNotSent, kRefused, kSilent, kNotUnderstood, kAnswered };
  Outcome outcome = Outcome::kNotAsked;
  std::string fault;  // for kNotSent: the reason
  SnmpResponse response;
};

struct Facts {
  ServiceFacts service;
  std::vector<std::string> accountSids;  // the account of the service, and its groups
  RegistrationFacts registration;
  std::string eventsUnknown;
  std::vector<Event> events;  // of the source SNMP since the service's start, the newest first
  FileFacts dll;
  SettingFacts communities;
  SettingFacts managers;
  SettingFacts trapDestinations;
  LinkFacts link;
  LogFolderFacts logFolder;
  LogFacts log;
  AnswerFacts answer;
  FirewallFacts firewall;
};

}  // namespace Check
