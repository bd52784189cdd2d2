#pragma once

#include <utility>

namespace Vask::Platform {

// Owns one resource of the operating system and closes it at the end of its
// scope. A policy names the kind of resource:
//
//   struct Policy {
//     using Type = ...;                                 // the system's handle
//     static constexpr Type None() noexcept;            // the value for "nothing held"
//     void Close(Type handle) const noexcept;           // never called with None()
//   };
//
// A policy may have members if Close needs more than the handle.
//
// For one thread at a time. Movable, not copyable.
template <class Policy>
class UniqueHandle {
 public:
  using Type = typename Policy::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle, Policy policy = {}) noexcept
      : m_policy(policy), m_handle(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept
      : m_policy(other.m_policy), m_handle(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    const Type handle = other.Release();
    Reset();
    m_policy = other.m_policy;
    m_handle = handle;
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  [[nodiscard]] bool Valid() const noexcept { return m_handle != Policy::None(); }
  [[nodiscard]] Type Get() const noexcept { return m_handle; }

  // Hands the resource to the caller, which must close it.
  [[nodiscard]] Type Release() noexcept { return std::exchange(m_handle, Policy::None()); }

  // Closes what is held and holds `handle` instead.
  void Reset(Type handle = Policy::None()) noexcept {
    const Type old = std::exchange(m_handle, handle);
    if (old != Policy::None()) m_policy.Close(old);
  }

 private:
  [[no_unique_address]] Policy m_policy{};
  Type m_handle = Policy::None();
};

}  // namespace Vask::Platform
