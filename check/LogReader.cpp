#include "check/LogReader.h"

#include <algorithm>
#include <cctype>

namespace Check {
namespace {

// The length of "06:00:05.668: ", which precedes each message.
constexpr std::size_t kTimeLength = 14;

// True if the text matches the pattern, in which `*` means any text.
bool Matches(std::string_view text, std::string_view pattern) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) return text == pattern;
  if (text.substr(0, star) != pattern.substr(0, star)) return false;
  text.remove_prefix(star);
  pattern.remove_prefix(star + 1);
  // The shortest text for each star is enough, except for the last star.
  for (std::size_t next; (next = pattern.find('*')) != std::string_view::npos;) {
    const std::size_t found = text.find(pattern.substr(0, next));
    if (found == std::string_view::npos) return false;
    text.remove_prefix(found + next);
    pattern.remove_prefix(next + 1);
  }
  return text.size() >= pattern.size() && text.substr(text.size() - pattern.size()) == pattern;
}

constexpr char kMessageDropped[] =
    "The agent has dropped one message of the Corvane software. The values stay as they were. The "
    "versions of agent and software probably do not fit. Send the line to the maker.";
constexpr char kForeignBytes[] =
    "The agent received bytes that are not a message of the Corvane software. Find the program "
    "that owns the port: netstat -abno | findstr :16969";
constexpr char kNoResources[] =
    "The machine has no more memory or threads. Restart the service. If it happens again, send the "
    "log to the maker.";

constexpr char kNoDisconnect[] =
    "Windows could not end the connection in the usual way, so the agent closed it without. The "
    "agent connects again by itself. If the line comes often, send the log to the maker.";

bool IsRequestLine(std::string_view message) {
  return Matches(message, "Info: GetRequest*") || Matches(message, "Info: GetNextRequest*") ||
         Matches(message, "Info: GetStoredVar*");
}

bool IsError(std::string_view message) {
  return message.substr(0, 7) == "Error: ";
}

// Calls `visit` for each line, without its line end.
template <class Visit>
void ForEachLine(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.size() > kTimeLength) visit(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace

const std::vector<LogMeaning>& LogMeanings() {
  static const std::vector<LogMeaning> meanings = {
      {"Error: *: m_* expected to be less than *. It is *.", kMessageDropped},
      {"Error: *: m_* expected to be greater than *. It is *.", kMessageDropped},
      {"Error: Get*Property: Property '*' exceeds the max length of *. It is * bytes.",
       kMessageDropped},
      {"Error: Get*Property: Property '*' was expected to be *", kMessageDropped},
      {"Error: Get*Property: Property '*' not found", kMessageDropped},
      {"Error: *_*: Union tag not understood for '*' (tag=*)", kMessageDropped},
      {"Error: Messages::Registrar::OnJsonMessageText: JSON parse failed at line *",
       kMessageDropped},
      {"Error: Messages::Registrar::OnJsonMessage: *", kMessageDropped},
      {"Error: Vask::JsonSocket::ProcessByte*", kForeignBytes},
      {"Error: Unable to open JsonSocket!", kNoResources},
      {"Error: Vask::JsonSocket::OpenThread open failed", kNoResources},
      {"Error: Vask::JsonSocket::Run: exception!", kNoResources},
      {"Error: Vask::TimerService::Run: exception!", kNoResources},
      {"Error: Cannot initialize SNMP extension agent: exception!", kNoResources},
      {"Error: Cannot query the SNMP extension agent: exception!", kNoResources},
      {"Error: Unable to register variable '*'!", kNoResources},
      {"Error: Messages::Registrar::Send: No memory for a message '*'", kNoResources},
      {"Error: Socket close: *", kNoDisconnect},
  };
  return meanings;
}

std::string MeaningOf(std::string_view line) {
  for (const LogMeaning& row : LogMeanings()) {
    if (Matches(line, row.line)) return row.meaning;
  }
  return "The operator's guide does not list this line. Send the log to the maker.";
}

std::string_view LogLine::Message() const {
  return std::string_view(text).substr(std::min(kTimeLength, text.size()));
}

std::string DayOf(std::string_view fileName) {
  constexpr std::string_view kForm = "Log0000-00-00.log";
  if (fileName.size() != kForm.size()) return {};
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool isDigit = std::isdigit(static_cast<unsigned char>(fileName[i])) != 0;
    if (kForm[i] == '0' ? !isDigit : fileName[i] != kForm[i]) return {};
  }
  return std::string(fileName.substr(3, 10));
}

void LogReader::Feed(const std::string& day, std::string_view text) {
  ForEachLine(text, [&](std::string_view line) { OnLine({day, std::string(line)}); });
}

void LogReader::OnLine(const LogLine& line) {
  const std::string_view message = line.Message();
  if (IsRequestLine(message)) return;
  LogFindings& found = m_findings;
  if (message == LogLines::kStarted || message == LogLines::kEnded) {
    found.lastRun = line;
    found.runs = message == LogLines::kStarted;
  }
  // The agent writes this line first. It sometimes connects before it writes that it has started.
  if (message == LogLines::kStarting) {
    found.lastLink = {};
    found.linked = false;
    found.lastUpdate = {};
    found.lastError = {};
    found.errors = 0;
  } else if (message == LogLines::kConnected || message == LogLines::kLost) {
    found.lastLink = line;
    found.linked = message == LogLines::kConnected;
    found.lastUpdate = {};
  } else if (message == LogLines::kUpdated) {
    found.lastUpdate = line;
  } else if (IsError(message)) {
    found.lastError = line;
    ++found.errors;
  }
  found.lastLines.push_back(line);
  if (found.lastLines.size() > kLastLines) found.lastLines.erase(found.lastLines.begin());
}

bool HasStartOrEnd(std::string_view text) {
  return text.find(LogLines::kStarting) != std::string_view::npos ||
         text.find(LogLines::kEnded) != std::string_view::npos;
}

}  // namespace Check
