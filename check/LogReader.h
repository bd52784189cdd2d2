#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Check {

// The lines of the agent's log that the program looks for, without their time. A `*` means any
// text. A test compares each line with the agent's sources.
namespace LogLines {
inline constexpr char kStarting[] = "Info: Starting Corvane SNMP extension agent..";
inline constexpr char kStarted[] = "Info: Extension agent started!";
inline constexpr char kEnded[] = "Info: Terminating SNMP extension agent..";
inline constexpr char kConnected[] = "Info: Connection to Corvane process established..";
inline constexpr char kLost[] = "Warning: Lost connection to Corvane process!";
inline constexpr char kUpdated[] = "Info: SNMP variables successfully updated";
}  // namespace LogLines

// The meaning of an error line of the log, and what to do.
struct LogMeaning {
  const char* line;
  const char* meaning;
};

// The meaning of an error line (without its time), in the words of the operator's guide.
[[nodiscard]] std::string MeaningOf(std::string_view line);

// All meanings, for the tests.
[[nodiscard]] const std::vector<LogMeaning>& LogMeanings();

// A line of the log, and the day of its file. `text` begins with the time.
struct LogLine {
  std::string day;  // "2026-11-21"
  std::string text;

  [[nodiscard]] bool IsThere() const { return !day.empty(); }
  [[nodiscard]] std::string Moment() const { return day + ' ' + text.substr(0, 8); }
  // The text without its time.
  [[nodiscard]] std::string_view Message() const;
};

struct LogFindings {
  LogLine lastRun;    // the last start or end of the agent
  bool runs = false;  // lastRun is a start
  LogLine lastLink;   // the last connection or loss since the last start
  bool linked = false;
  LogLine lastUpdate;  // the last full set of values since the last connection
  LogLine lastError;   // since the last start
  std::size_t errors = 0;
  std::vector<LogLine> lastLines;  // the last lines of all, without those of requests
};

// The day in the name of a log file; empty if the name is not one of the agent's.
[[nodiscard]] std::string DayOf(std::string_view fileName);

// Reads log files from the oldest to the newest.
class LogReader {
 public:
  static constexpr std::size_t kLastLines = 3;

  void Feed(const std::string& day, std::string_view text);
  [[nodiscard]] const LogFindings& Findings() const { return m_findings; }

 private:
  void OnLine(const LogLine& line);

  LogFindings m_findings;
};

// True if the text contains a start or an end of the agent. Then older files do not matter.
[[nodiscard]] bool HasStartOrEnd(std::string_view text);

}  // namespace Check
