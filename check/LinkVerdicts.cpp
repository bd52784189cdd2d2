// The steps from the Corvane software to the answer: the link, the log, the variables.

#include <algorithm>

#include "agent/Variables.h"
#include "check/Access.h"
#include "check/VerdictParts.h"

namespace Check {
namespace {

constexpr std::int64_t kLinkIsDown = 1;

bool IsReachable(const TcpSocket& listener) {
  return listener.address == "127.0.0.1" || listener.address == "0.0.0.0";
}

std::string OwnerOf(const TcpSocket& socket) {
  if (socket.processId == 0) return "A program";
  const std::string process = "process " + std::to_string(socket.processId);
  return socket.process.empty() ? "A program (" + process + ")"
                                : socket.process + " (" + process + ")";
}

bool ServiceIsConnected(const Facts& facts) {
  return std::any_of(facts.link.connections.begin(), facts.link.connections.end(),
                     [&](const TcpSocket& connection) {
                       return facts.service.processId != 0 &&
                              connection.processId == facts.service.processId;
                     });
}

std::vector<std::string> TextsOf(const std::vector<LogLine>& lines) {
  std::vector<std::string> texts;
  texts.reserve(lines.size());
  for (const LogLine& line : lines) texts.push_back(line.day + ' ' + line.text);
  return texts;
}

// "corvaneStreamsErrors = 3"
std::string Described(const SnmpBinding& binding) {
  const std::string name = VariableNameOf(binding.oid);
  if (binding.kind == SnmpBinding::Kind::kText) return name + " = \"" + binding.text + '"';
  std::string text = name + " = " + std::to_string(binding.number);
  if (binding.oid == RequestedVariables().front()) {
    text += binding.number == 0 ? " (up)" : " (down)";
  }
  return text;
}

// True if the binding holds the requested variable, with a value of its type.
bool Answers(const SnmpBinding& binding, const Oid& requested, BYTE type) {
  const auto wanted =
      type == Agent::kTypeInt ? SnmpBinding::Kind::kNumber : SnmpBinding::Kind::kText;
  return binding.oid == requested && binding.kind == wanted;
}

Verdict JudgeResponse(const SnmpResponse& response) {
  constexpr StepId kStep = StepId::kAnswer;
  const std::vector<Oid> requested = RequestedVariables();
  std::vector<std::string> values;
  std::vector<std::string> missing;
  for (std::size_t i = 0; i < requested.size(); ++i) {
    const bool isThere = response.errorStatus == 0 && i < response.bindings.size() &&
                         Answers(response.bindings[i], requested[i], Agent::kVariables[i].type);
    if (isThere) {
      values.push_back(Described(response.bindings[i]));
    } else {
      missing.push_back(VariableNameOf(requested[i]));
    }
  }
  // 2 is noSuchName. Any other error does not tell which variables the service has.
  const std::int64_t status = response.errorStatus;
  if (values.empty() && status != 0 && status != 2) {
    return Failed(kStep,
                  "The service answers with the error status " + std::to_string(status) + '.',
                  "see the step 14, then restart the service.");
  }
  if (values.empty()) {
    return Failed(kStep,
                  "The service answers, but has none of the agent's variables (error status " +
                      std::to_string(response.errorStatus) + "): it has not loaded the agent.",
                  "see steps 2 to 7, then restart the service.");
  }
  if (!missing.empty()) {
    return Failed(kStep, "The answer lacks " + Joined(missing) + '.',
                  "restart the service. If it happens again, send the log to the maker.",
                  std::move(values));
  }
  const bool isDown = response.bindings.front().number == kLinkIsDown;
  return Ok(kStep,
            isDown ? "All variables are there. The link is down, so the values are old."
                   : "All variables are there.",
            std::move(values));
}

// True if the service's list has a community of this name. Empty if the list cannot be read.
std::optional<bool> Knows(const SettingFacts& communities, const std::string& name) {
  const KeyFacts& key = communities.InForce();
  if (key.state == KeyFacts::State::kUnreadable) return {};
  return std::any_of(key.values.begin(), key.values.end(), [&](const SettingValue& value) {
    return (value.isNumber ? value.name : value.text) == name;
  });
}

Verdict JudgeSilence(const Facts& facts, const Options& options) {
  constexpr StepId kStep = StepId::kAnswer;
  const std::string text =
      "No answer from 127.0.0.1, UDP port " + std::to_string(options.port) + ", to two requests.";
  const bool isGiven = !options.community.empty();
  if (isGiven && Knows(facts.communities, options.community) == std::optional(false)) {
    return Failed(kStep, text + " The service does not accept the community of --community.",
                  "correct the community, or add it to the service.");
  }
  const KeyFacts& managers = facts.managers.InForce();
  const bool areKnown = managers.state != KeyFacts::State::kUnreadable;
  const auto hosts = TextsOf(managers);
  if (areKnown && !hosts.empty() && std::none_of(hosts.begin(), hosts.end(), IsThisMachine)) {
    return Skipped(kStep, text +
                              " This machine is not a permitted manager, so the service does not "
                              "answer it. Send a request from your manager.");
  }
  std::string causes = " Possible causes: the service hangs";
  if (isGiven) causes += "; the community is wrong";
  if (!areKnown) causes += "; this machine is not a permitted manager (the list cannot be read)";
  return Failed(kStep, text + causes + '.',
                isGiven || !areKnown ? "run this program as an administrator, without --community."
                                     : "restart the service.");
}

Verdict WithoutConnection(const Facts& facts) {
  constexpr StepId kStep = StepId::kLink;
  const LinkFacts& link = facts.link;
  if (link.listeners.empty()) {
    return Failed(kStep, "No connection, because no program listens.",
                  "start the Corvane software. The agent connects by itself within 5 seconds.");
  }
  if (!link.connections.empty()) {
    return Failed(kStep, OwnerOf(link.connections.front()) +
                             " is connected to the port, but not the service.");
  }
  return Failed(kStep, "The service is not connected to the port.");
}

}  // namespace

Verdict JudgePort(const Facts& facts) {
  constexpr StepId kStep = StepId::kPort;
  const LinkFacts& link = facts.link;
  if (!link.whyUnknown.empty()) {
    return Skipped(kStep, "The list of TCP sockets cannot be read: " + link.whyUnknown + '.');
  }
  if (link.listeners.empty()) {
    return Failed(kStep, "No program listens on TCP port 16969.");
  }
  const auto reachable = std::find_if(link.listeners.begin(), link.listeners.end(), IsReachable);
  if (reachable != link.listeners.end()) {
    return Ok(kStep, OwnerOf(*reachable) + " listens on TCP port 16969 at " + reachable->address +
                         ". Check that it is the Corvane software.");
  }
  const TcpSocket& other = link.listeners.front();
  const std::string text = OwnerOf(other) + " listens on TCP port 16969 at " + other.address;
  // A listener at :: may take IPv4 connections as well.
  if (other.address == "::" && ServiceIsConnected(facts)) return Ok(kStep, text + '.');
  if (other.address == "::" && !facts.service.Runs()) {
    return Skipped(kStep, text +
                              ". Whether the agent can reach it is not known while the service "
                              "does not run.");
  }
  return Failed(kStep, text + ". The agent connects to 127.0.0.1 and cannot reach it.",
                "let the Corvane software listen at 127.0.0.1 or 0.0.0.0.");
}

Verdict JudgeLink(const Facts& facts) {
  constexpr StepId kStep = StepId::kLink;
  if (!facts.link.whyUnknown.empty()) {
    return Skipped(kStep, "The list of TCP sockets cannot be read: " + facts.link.whyUnknown + '.');
  }
  if (facts.service.state != ServiceFacts::State::kUnknown && !facts.service.Runs()) {
    return Skipped(kStep, "The service does not run.");
  }
  if (facts.service.processId == 0) {
    return Skipped(kStep, "The process of the service is not known.");
  }
  if (!ServiceIsConnected(facts)) return WithoutConnection(facts);
  const LogFindings& log = facts.log.findings;
  if (log.linked && !log.lastUpdate.IsThere() && log.lastLink.Moment() < facts.log.minuteAgo) {
    return Failed(kStep,
                  "The service has been connected since " + log.lastLink.Moment() +
                      ", but a full set of values never arrived.",
                  "restart the Corvane software. If another program listens on the port, end it.");
  }
  return Ok(kStep, "The service is connected.");
}

Verdict JudgeFolder(const Facts& facts) {
  constexpr StepId kStep = StepId::kFolder;
  const LogFolderFacts& folder = facts.logFolder;
  if (!folder.whyUnknown.empty()) {
    return Skipped(kStep,
                   "The log folder " + folder.path + " cannot be read: " + folder.whyUnknown + '.');
  }
  if (!folder.exists) {
    return Failed(kStep, "There is no folder " + folder.path + ": the agent never ran.",
                  "see steps 2 to 7, then restart the service.");
  }
  if (!folder.access.whyUnknown.empty()) {
    return Skipped(kStep, "The rights of " + folder.path +
                              " cannot be read: " + folder.access.whyUnknown + '.');
  }
  if (facts.accountSids.empty()) {
    return Skipped(kStep, folder.path + " exists. The account of the service is not known.");
  }
  if (!HasRights(folder.access, facts.accountSids, kRightToAddFile)) {
    return Failed(kStep, "The account of the service may not write to " + folder.path + '.');
  }
  return Ok(kStep, folder.path + " exists, and the account of the service may write to it.");
}

Verdict JudgeLog(const Facts& facts) {
  constexpr StepId kStep = StepId::kLog;
  const LogFacts& log = facts.log;
  const LogFindings& found = log.findings;
  const bool isStopped =
      facts.service.state != ServiceFacts::State::kUnknown && !facts.service.Runs();
  if (!log.whyUnknown.empty()) {
    return Skipped(kStep, "The log cannot be read: " + log.whyUnknown + '.');
  }
  if (log.files == 0) {
    return Failed(kStep, "There is no log: the agent never ran, or it may not write there.",
                  "see steps 2 to 7 and the folder's rights, then restart the service.");
  }
  std::vector<std::string> lines = TextsOf(found.lastLines);
  std::string text = "Newest file " + log.newest;
  text += DayOf(log.newest) == log.today ? "." : ", none from today.";
  if (found.errors > 0) {
    return Failed(kStep,
                  text + ' ' + std::to_string(found.errors) +
                      " error line(s) since the agent's start, the last: " + found.lastError.day +
                      ' ' + found.lastError.text,
                  MeaningOf(found.lastError.Message()), std::move(lines));
  }
  if (isStopped) return Skipped(kStep, text + " The service does not run.", std::move(lines));
  if (!found.lastRun.IsThere()) {
    return Skipped(kStep, text + " The files hold neither a start nor an end of the agent.",
                   std::move(lines));
  }
  const std::string moment = found.lastRun.Moment();
  if (!found.runs) {
    return Failed(kStep, text + " The agent ended at " + moment + " and has not started again.", {},
                  std::move(lines));
  }
  if (!facts.service.startedAt.empty() && moment < facts.service.startedAt) {
    return Failed(
        kStep,
        text + " The agent started last at " + moment + ", before the service's present start.",
        "see steps 2 to 7, then restart the service.", std::move(lines));
  }
  return Ok(kStep, text + " The agent started at " + moment + ", and no error line follows.",
            std::move(lines));
}

Verdict JudgeAnswer(const Facts& facts, const Options& options) {
  constexpr StepId kStep = StepId::kAnswer;
  const std::string place = "127.0.0.1, UDP port " + std::to_string(options.port);
  switch (facts.answer.outcome) {
    case AnswerFacts::Outcome::kNotAsked:
      if (facts.communities.InForce().state != KeyFacts::State::kUnreadable) {
        return Skipped(kStep, "The service has no community that may read.");
      }
      return Skipped(kStep,
                     "No community is known. Run this program as an administrator, or use "
                     "--community.");
    case AnswerFacts::Outcome::kNotSent:
      return Skipped(kStep, "The request could not be sent: " + facts.answer.fault + '.');
    case AnswerFacts::Outcome::kRefused:
      return Failed(kStep, "No program listens at " + place + '.', "start the service.");
    case AnswerFacts::Outcome::kSilent:
      return JudgeSilence(facts, options);
    case AnswerFacts::Outcome::kNotUnderstood:
      return Failed(kStep, "The data from " + place + " is not an answer to the request.",
                    "find the program that owns the port: netstat -abno | findstr :" +
                        std::to_string(options.port));
    case AnswerFacts::Outcome::kAnswered:
      break;
  }
  return JudgeResponse(facts.answer.response);
}

}  // namespace Check
