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

// The agent's one log. Every message goes, with its time and level, to the
// day's file, to the console and to a syslog server where those are switched
// on, and into a history of the last 20 messages, which listeners get with
// every warning and error.
//
// Any thread may call any operation; one lock makes each message whole. The lock
// is held while a piece is written and is taken again by whoever holds it.
// Listeners and the callback of EnumerateLogFiles are called without it.
//
// No failure of the log is reported anywhere: without a file, messages still go
// to the rest.
class DailyLog final : public IDailyLog, public Thread::SingletonRef<DailyLog> {
 public:
  using MessageChunk = Vask::MessageChunk;

  // The default arguments make the process's own log. All seams must outlive
  // it. Levels whose bit is not in the mask are not logged at all.
  explicit DailyLog(Platform::Clock& clock = Platform::SystemClock(),
                    Platform::Files& files = Platform::SystemFiles(),
                    Platform::Sockets& sockets = Platform::SystemSockets(),
                    std::uint32_t levelMask = kAllLogLevels);
  // Takes itself out of the printer first: later messages go to the console.
  ~DailyLog() override;
  DailyLog(const DailyLog&) = delete;
  DailyLog& operator=(const DailyLog&) = delete;

  // See CDailyEventLog.
  [[nodiscard]] bool Open(const char* folder) VASK_EXCLUDES(m_lock);
  void SetSizeLimit(std::uint32_t bytes) VASK_EXCLUDES(m_lock);
  void SetDaysToKeep(std::uint32_t days) override VASK_EXCLUDES(m_lock);

  // Prints every message on the standard output as well; off at first.
  void SetConsoleEcho(bool echo) VASK_EXCLUDES(m_lock);

  // Copies every message to `host`, a name or dotted address with an optional
  // colon and port (514 without). `localPort` is the port to send from: 0 any,
  // negative the one used last time. False, with nothing changed, for a port 0
  // or a host that does not resolve; false when there is no socket. Looks the
  // name up without the lock, which may take seconds.
  bool EnableSyslog(const char* host, std::int32_t localPort) override VASK_EXCLUDES(m_lock);
  void DisableSyslog() override VASK_EXCLUDES(m_lock);

  void Info(const char* text) override VASK_EXCLUDES(m_lock);
  void Warning(const char* text) override VASK_EXCLUDES(m_lock);
  void Error(const char* text) override VASK_EXCLUDES(m_lock);
  void Trace(const char* text) override VASK_EXCLUDES(m_lock);

  // A listener may be added twice and then hears twice; RemoveListener takes
  // one of them out. A call that has begun is not waited for.
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

  // What every line looks at stands together.
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
