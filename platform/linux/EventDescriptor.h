#pragma once

#include <cstdint>

#include "platform/Threading.h"

// How an event's NativeHandle carries an eventfd on systems that have no event
// handles. The handle is a number and no address: twice the descriptor plus
// one, and one more for a manual event. So null stays free for "no event", and
// a program on the other side of the extension-agent contract, which gets the
// trap event as a HANDLE, can put the descriptor into its own poll loop.
namespace Vask::Platform {

// The eventfd, readable while the event is signalled. Stays the event's.
inline int EventDescriptor(NativeHandle event) noexcept {
  return static_cast<int>(reinterpret_cast<std::uintptr_t>(event) / 2) - 1;
}

inline EventReset EventKind(NativeHandle event) noexcept {
  return reinterpret_cast<std::uintptr_t>(event) % 2 == 0 ? EventReset::Automatic
                                                          : EventReset::Manual;
}

inline NativeHandle EventFromDescriptor(int descriptor, EventReset reset) noexcept {
  const auto number = (static_cast<std::uintptr_t>(descriptor) + 1) * 2;
  return reinterpret_cast<NativeHandle>(number + (reset == EventReset::Manual ? 1 : 0));
}

}  // namespace Vask::Platform
