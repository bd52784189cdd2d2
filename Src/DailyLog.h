#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Src/CDailyEventLog.h"
#include "Src/IDailyLog.h"
#include "Src/LogHead.h"
#include "Src/MessageHistory.h"
#include "Src/SingletonRef.h"
#include "Src/SyslogSender.h"
#include "platform/Clock.h"
#include "platform/CriticalSection.h"
#include "platform/Files.h"
#include "platform/Sockets.h"

namespace Vask {

// The agent's one log. It writes every message, with its time and level, to the day's
// file and, if they are switched on, to the console and to a syslog server. It keeps
// the last 20 messages and passes them to listeners with every warning and error.
//
// Any thread may call any operation. One re-entrant lock keeps each message whole; the
// log holds it while it writes a message, and not while it calls listeners or the
// callback of EnumerateLogFiles.
//
// The log reports no failure of its own. Without a file it still writes to the other
// outputs.
class DailyLog final : public IDailyLog, public Thread::SingletonRef<DailyLog> {
 public:
  using MessageChunk = Vask::MessageChunk;

  // The default arguments are those of the process's own log. Clock, files and sockets
  // must outlive it. A message whose level is not in the mask is dropped.
  explicit DailyLog(Platform::Clock& clock = Platform::SystemClock(),
                    Platform::Files& files = Platform::SystemFiles(),
                    Platform::Sockets& sockets = Platform::SystemSockets(),
                    std::uint32_t levelMask = kAllLogLevels);
  // Removes itself from the printer first: later messages go to the console.
  ~DailyLog() override;
  DailyLog(const DailyLog&) = delete;
  DailyLog& operator=(const DailyLog&) = delete;

  // See CDailyEventLog.
  [[nodiscard]] bool Open(const char* folder) VASK_EXCLUDES(m_lock);
  void SetSizeLimit(std::uint32_t bytes) VASK_EXCLUDES(m_lock);
  void SetDaysToKeep(std::uint32_t days) override VASK_EXCLUDES(m_lock);

  // Prints every message on the standard output as well; off at first.
  void SetConsoleEcho(bool echo) VASK_EXCLUDES(m_lock);

  // Copies every message to `host`, a name or dotted address with an optional colon and
  // port (514 without). `localPort` is the port to send from: 0 for any, negative for
  // the one used last time. Returns false and changes nothing if the port is 0 or the
  // host cannot be resolved. Returns false also if there is no socket. The look-up of
  // the name may take seconds; the log does not hold its lock meanwhile.
  bool EnableSyslog(const char* host, std::int32_t localPort) override VASK_EXCLUDES(m_lock);
  void DisableSyslog() override VASK_EXCLUDES(m_lock);

  void Info(const char* text) override VASK_EXCLUDES(m_lock);
  void Warning(const char* text) override VASK_EXCLUDES(m_lock);
  void Error(const char* text) override VASK_EXCLUDES(m_lock);
  void Trace(const char* text) override VASK_EXCLUDES(m_lock);

  // A listener that was added twice is called twice; RemoveListener removes one of the
  // two. It does not wait for a call that has begun.
  void AddListener(IListener* listener) override VASK_EXCLUDES(m_lock);
  void RemoveListener(IListener* listener) override VASK_EXCLUDES(m_lock);

  // With its trailing backslash; empty before Open and for "stdout". Valid
  // until the next Open.
  const char* GetFolder() override VASK_EXCLUDES(m_lock);
  bool EnumerateLogFiles(LogFileCallback callback, void* context) override VASK_EXCLUDES(m_lock);

 private:
  using ListenerCall = void (IListener::*)(const ILogDataBlock* const* blocks, std::uint32_t count,
                                           std::uint32_t totalLength);

  [[nodiscard]] bool Wants(LogLevel level) const noexcept;
  void Write(LogLevel level, std::string_view text) VASK_EXCLUDES(m_lock);
  void WriteAndNotify(LogLevel level, std::string_view text, ListenerCall call)
      VASK_EXCLUDES(m_lock);
  void Record(LogLevel level, std::string_view text) VASK_REQUIRES(m_lock);
  void Echo(const LogHead& head, std::string_view text) VASK_REQUIRES(m_lock);
  void Notify(const MessageHistoryCopy& history, ListenerCall call) VASK_EXCLUDES(m_lock);
  std::size_t ListenerNodes() VASK_EXCLUDES(m_lock);
  IListener* ListenerAt(std::size_t index) VASK_EXCLUDES(m_lock);

  // The members that every line uses come first, side by side.
  Platform::CriticalSection m_lock{Platform::LockRank::DailyLog};
  const std::uint32_t m_levelMask;
  bool m_consoleEcho VASK_GUARDED_BY(m_lock) = false;
  Platform::Clock& m_clock;
  Platform::Files& m_files;
  Platform::Sockets& m_sockets;
  LogHeadMaker m_heads VASK_GUARDED_BY(m_lock);
  CDailyEventLog m_file VASK_GUARDED_BY(m_lock);
  MessageHistory m_history VASK_GUARDED_BY(m_lock);
  SyslogSender m_syslog VASK_GUARDED_BY(m_lock);
  std::uint32_t m_notifyDepth VASK_GUARDED_BY(m_lock) = 0;
  std::vector<IListener*> m_listeners VASK_GUARDED_BY(m_lock);  // null where removed
};

}  // namespace Vask
