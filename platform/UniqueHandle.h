#pragma once

#include <utility>

namespace Vask::Platform {

// Owns one resource of the operating system and gives it back at the end of
// its scope. A policy names the kind of resource:
//
//   struct Policy {
//     using Type = ...;                                 // the system's handle
//     static constexpr Type None() noexcept;            // the value for "nothing held"
//     static void Close(Type handle) noexcept;          // never called with None()
//   };
//
// Not for use by several threads at once. Movable, not copyable.
template <class Policy>
class UniqueHandle {
 public:
  using Type = typename Policy::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle) noexcept : m_handle(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : m_handle(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  [[nodiscard]] bool Valid() const noexcept { return m_handle != Policy::None(); }
  [[nodiscard]] Type Get() const noexcept { return m_handle; }

  // Hands the resource to the caller, who must give it back.
  [[nodiscard]] Type Release() noexcept { return std::exchange(m_handle, Policy::None()); }

  // Gives back what is held and holds `handle` instead.
  void Reset(Type handle = Policy::None()) noexcept {
    const Type old = std::exchange(m_handle, handle);
    if (old != Policy::None()) Policy::Close(old);
  }

 private:
  Type m_handle = Policy::None();
};

}  // namespace Vask::Platform
