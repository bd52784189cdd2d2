#pragma once

namespace Vask::Thread {

// The one T of the process, built on first use. Instance() may be called from
// any thread and blocks only while the first call constructs the T.
//
// The T is destroyed when the module is unloaded, in reverse order of
// construction, after its threads have ended. When the whole process ends it is
// left alone: on Windows the threads were killed wherever they stood and locks
// may be held for ever; elsewhere they may still run.
template <class T>
class SingletonRef {
 public:
  static T& Instance();
};

}  // namespace Vask::Thread
