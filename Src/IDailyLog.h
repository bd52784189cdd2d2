#pragma once

#include <cstdint>

namespace Vask {

// The operations of the agent's log. Any thread may call them. DailyLog describes each of
// them.
class IDailyLog {
 public:
  // One piece of a stored message; a message is a chain of pieces.
  class ILogDataBlock {
   public:
    virtual const char* Data() const = 0;           // not NUL-terminated
    virtual std::uint32_t Length() const = 0;       // bytes used
    virtual const ILogDataBlock* Next() const = 0;  // null after the last

   protected:
    ~ILogDataBlock() = default;
  };

  // Is called for every warning and error and gets the messages that were logged last,
  // this one included. `blocks` points to the first piece of each of `count` messages,
  // oldest first. `totalLength` is the sum of their lengths in bytes. All of it is lent
  // for the call. The log calls a listener on the thread that logged, without its lock.
  // A message that a listener logs is passed to no listener.
  class IListener {
   public:
    virtual void OnWarning(const ILogDataBlock* const* blocks, std::uint32_t count,
                           std::uint32_t totalLength) = 0;
    virtual void OnError(const ILogDataBlock* const* blocks, std::uint32_t count,
                         std::uint32_t totalLength) = 0;

   protected:
    ~IListener() = default;
  };

  // Gets one log file: its name, its full path and the caller's context. Returns whether
  // to go on.
  using LogFileCallback = bool (*)(const char* name, const char* path, void* context);

  virtual bool EnableSyslog(const char* host, std::int32_t localPort) = 0;
  virtual void DisableSyslog() = 0;

  // Write one message. The text is NUL-terminated and includes its line end.
  virtual void Info(const char* text) = 0;
  virtual void Warning(const char* text) = 0;
  virtual void Error(const char* text) = 0;
  virtual void Trace(const char* text) = 0;

  virtual void AddListener(IListener* listener) = 0;
  virtual void RemoveListener(IListener* listener) = 0;
  virtual void SetDaysToKeep(std::uint32_t days) = 0;
  virtual const char* GetFolder() = 0;
  virtual bool EnumerateLogFiles(LogFileCallback callback, void* context) = 0;

  virtual ~IDailyLog() = default;
};

}  // namespace Vask
