#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

#include "tests/hostile/FaultyImports.h"

namespace Hostile {

// Makes the module call the replacement, and returns the function that it called
// before. Null if the module imports no function of this name. linux/ and win32/
// implement this function and the next one.
void* ReplaceImport(void* library, const char* name, void* replacement);

// Sets the reason of a failed call, which the caller reads from the system.
void SetReason(int reason) noexcept;

// A name that can be a template argument.
template <std::size_t size>
struct ImportName {
  constexpr ImportName(const char (&name)[size]) { std::copy_n(name, size, text); }
  char text[size];
};

inline void* ReplaceKnownImport(void* library, const char* name, void* replacement) {
  void* const before = ReplaceImport(library, name, replacement);
  if (before != nullptr) return before;
  std::fprintf(stderr, "the module does not import %s\n", name);
  std::exit(2);
}

// A function that the module imports. If the switch strikes, it returns `failure` and
// sets `reason`; otherwise it calls the real function.
template <ImportName name, Fault fault, std::intptr_t failure, int reason, class Function>
class FaultyImport;

template <ImportName name, Fault fault, std::intptr_t failure, int reason, class Result,
          class... Arguments>
class FaultyImport<name, fault, failure, reason, Result(Arguments...)> {
 public:
  static void PutInto(void* library) {
    s_real = reinterpret_cast<decltype(s_real)>(
        ReplaceKnownImport(library, name.text, reinterpret_cast<void*>(&Call)));
  }

 private:
  static Result Call(Arguments... arguments) {
    if (!g_faultSwitch.Strikes(fault)) return s_real(arguments...);
    SetReason(reason);
    if constexpr (std::is_pointer_v<Result>) {
      return reinterpret_cast<Result>(failure);
    } else {
      return static_cast<Result>(failure);
    }
  }

  static inline Result (*s_real)(Arguments...) = nullptr;
};

}  // namespace Hostile
