#pragma once

#include <pthread.h>

#include <cstddef>
#include <functional>

namespace Vask::Tests {

// Runs `body` on a thread with a stack of `bytes` and waits for its end. False if the
// thread could not be created. Windows reserves a larger stack.
inline bool RunOnSmallStack(std::size_t bytes, std::function<void()> body) {
  const auto entry = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_t thread{};
  const bool started = pthread_attr_setstacksize(&attributes, bytes) == 0 &&
                       pthread_create(&thread, &attributes, entry, &body) == 0;
  pthread_attr_destroy(&attributes);
  return started && pthread_join(thread, nullptr) == 0;
}

}  // namespace Vask::Tests
