#include "Src/DailyLog.h"

#include <algorithm>
#include <optional>

#include "Src/LogHead.h"
#include "Src/LogPrinter.h"

namespace Vask {

using Platform::CriticalSectionLock;

// The destructor needs the printer. The call here makes the printer live longer.
DailyLog::DailyLog(Platform::Clock& clock, Platform::Files& files, Platform::Sockets& sockets,
                   std::uint32_t levelMask)
    : m_levelMask(levelMask),
      m_clock(clock),
      m_files(files),
      m_sockets(sockets),
      m_file(clock, files),
      m_syslog(sockets) {
  LogPrinter::Instance();
}

DailyLog::~DailyLog() {
  LogPrinter::Instance().RemoveTarget(this);
}

bool DailyLog::Open(const char* folder) {
  const CriticalSectionLock lock(m_lock);
  return m_file.Open(folder);
}

void DailyLog::SetSizeLimit(std::uint32_t bytes) {
  const CriticalSectionLock lock(m_lock);
  m_file.SetSizeLimit(bytes);
}

void DailyLog::SetDaysToKeep(std::uint32_t days) {
  const CriticalSectionLock lock(m_lock);
  m_file.SetDaysToKeep(days);
}

void DailyLog::SetConsoleEcho(bool echo) {
  const CriticalSectionLock lock(m_lock);
  m_consoleEcho = echo;
}

bool DailyLog::EnableSyslog(const char* host, std::int32_t localPort) {
  InetAddress2 server(m_sockets);
  if (!server.Set(host)) return false;
  const CriticalSectionLock lock(m_lock);
  return m_syslog.Enable(server, localPort);
}

void DailyLog::DisableSyslog() {
  const CriticalSectionLock lock(m_lock);
  m_syslog.Disable();
}

// All functions that every line runs through are marked hot, so that the linker puts
// them side by side.
[[gnu::hot]] void DailyLog::Info(const char* text) {
  Write(LogLevel::Info, text);
}

void DailyLog::Warning(const char* text) {
  WriteAndNotify(LogLevel::Warning, text, &IListener::OnWarning);
}

void DailyLog::Error(const char* text) {
  WriteAndNotify(LogLevel::Error, text, &IListener::OnError);
}

void DailyLog::Trace(const char* text) {
  Write(LogLevel::Trace, text);
}

void DailyLog::AddListener(IListener* listener) {
  const CriticalSectionLock lock(m_lock);
  const auto removed = std::find(m_listeners.begin(), m_listeners.end(), nullptr);
  if (removed != m_listeners.end()) {
    *removed = listener;
  } else {
    m_listeners.push_back(listener);
  }
}

void DailyLog::RemoveListener(IListener* listener) {
  const CriticalSectionLock lock(m_lock);
  const auto found = std::find(m_listeners.begin(), m_listeners.end(), listener);
  if (found != m_listeners.end()) *found = nullptr;
}

const char* DailyLog::GetFolder() {
  const CriticalSectionLock lock(m_lock);
  return m_file.Folder().Path().c_str();
}

bool DailyLog::EnumerateLogFiles(LogFileCallback callback, void* context) {
  LogFolder folder;
  {
    const CriticalSectionLock lock(m_lock);
    folder = m_file.Folder();
  }
  return folder.Enumerate(m_files, callback, context);
}

bool DailyLog::Wants(LogLevel level) const noexcept {
  return (m_levelMask & static_cast<std::uint32_t>(level)) != 0;
}

void DailyLog::Write(LogLevel level, std::string_view text) {
  if (!Wants(level)) return;
  const CriticalSectionLock lock(m_lock);
  Record(level, text);
}

// While listeners are called, further warnings and errors of any thread are logged but
// call no listener. Otherwise a listener that logs would never end.
void DailyLog::WriteAndNotify(LogLevel level, std::string_view text, ListenerCall call) {
  if (!Wants(level)) return;
  std::optional<MessageHistoryCopy> history;
  {
    const CriticalSectionLock lock(m_lock);
    Record(level, text);
    if (m_notifyDepth == 0 && !m_listeners.empty()) history = m_history.Copy();
    ++m_notifyDepth;
  }
  if (history) Notify(*history, call);
  const CriticalSectionLock lock(m_lock);
  --m_notifyDepth;
}

[[gnu::hot]] void DailyLog::Record(LogLevel level, std::string_view text) {
  const LogHead& head = m_heads.Make(m_clock.LocalNow(), level);
  m_file.WriteLine(head.TimeStamp(), head.Prefix(), text);
  if (m_consoleEcho) Echo(head, text);
  if (m_syslog.Enabled()) m_syslog.Send(head.Prefix(), text);
  m_history.Store(head.Both(), text);
}

void DailyLog::Echo(const LogHead& head, std::string_view text) {
  const Platform::FileHandle console = m_files.StandardOutput();
  for (const std::string_view piece : {head.TimeStamp(), head.Prefix(), text}) {
    m_files.Append(console, piece.data(), piece.size());
  }
}

// Walks by index and reads each listener just before its call, because a call may add
// and remove listeners. A listener that is added meanwhile waits for the next message.
void DailyLog::Notify(const MessageHistoryCopy& history, ListenerCall call) {
  const std::size_t nodes = ListenerNodes();
  for (std::size_t i = 0; i < nodes; ++i) {
    IListener* const listener = ListenerAt(i);
    if (listener == nullptr) continue;
    try {
      (listener->*call)(history.Blocks(), history.Count(), history.TotalLength());
    } catch (...) {  // must affect neither the logging thread nor other listeners
    }
  }
}

std::size_t DailyLog::ListenerNodes() {
  const CriticalSectionLock lock(m_lock);
  return m_listeners.size();
}

IDailyLog::IListener* DailyLog::ListenerAt(std::size_t index) {
  const CriticalSectionLock lock(m_lock);
  return m_listeners[index];
}

}  // namespace Vask
