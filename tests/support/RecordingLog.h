#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "Src/IDailyLog.h"
#include "Src/LogPrinter.h"

namespace Vask::Tests {

// Base of logs that take lines and nothing else.
class LinesOnlyLog : public IDailyLog {
 public:
  bool EnableSyslog(const char*, std::int32_t) override { return false; }
  void DisableSyslog() override {}
  void AddListener(IListener*) override {}
  void RemoveListener(IListener*) override {}
  void SetDaysToKeep(std::uint32_t) override {}
  const char* GetFolder() override { return ""; }
  bool EnumerateLogFiles(LogFileCallback, void*) override { return true; }
};

// Takes the place of the daily log. While it lives it is the printer's target, and it
// records every line as "Info: text" with the line end of the text. Any thread may log
// while a test reads.
class RecordingLog final : public LinesOnlyLog {
 public:
  RecordingLog() { LogPrinter::Instance().SetTarget(this); }
  ~RecordingLog() override { LogPrinter::Instance().SetTarget(nullptr); }

  std::vector<std::string> Lines() const {
    const std::lock_guard lock(m_mutex);
    return m_lines;
  }
  void Clear() {
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
  }

  void Info(const char* text) override { Add("Info: ", text); }
  void Warning(const char* text) override { Add("Warning: ", text); }
  void Error(const char* text) override { Add("Error: ", text); }
  void Trace(const char* text) override { Add("TRACE: ", text); }

 private:
  void Add(const char* prefix, const char* text) {
    const std::lock_guard lock(m_mutex);
    m_lines.push_back(std::string(prefix) + text);
  }

  mutable std::mutex m_mutex;
  std::vector<std::string> m_lines;
};

}  // namespace Vask::Tests
