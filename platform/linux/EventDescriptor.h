#pragma once

#include <cstdint>

#include "platform/Threading.h"

// Linux has no event handles, so the NativeHandle of an event is a number that holds
// an eventfd: (descriptor + 1) * 2, plus 1 for a manual event. Null remains free for
// "no event". A program on the other side of the extension-agent contract, which
// gets the trap event as a HANDLE, can wait for the descriptor in its own poll loop.
namespace Vask::Platform {

// Returns the eventfd, which is readable while the event is signalled. The event
// still owns it.
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
