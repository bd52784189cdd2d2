#pragma once

#include <utility>

namespace Vask {

// Owns one reference to a counted object and releases it at the end of its scope. It
// can be moved, not copied. Made from a new object, it takes over the creator's
// reference:
//
//   JsonRef<JsonObject> envelope(new JsonObject);
//   JsonRef<Json> message(Parse(result, text));   // may be empty
//
// Belongs to one thread at a time, like any local value.
template <class T>
class JsonRef {
 public:
  JsonRef() noexcept = default;
  explicit JsonRef(T* adopted) noexcept : m_value(adopted) {}
  JsonRef(JsonRef&& other) noexcept : m_value(other.Detach()) {}
  JsonRef& operator=(JsonRef&& other) noexcept {
    Reset(other.Detach());
    return *this;
  }
  ~JsonRef() { Reset(nullptr); }

  // Releases the held reference and takes over the reference of the new object.
  void Reset(T* adopted) noexcept {
    if (T* old = std::exchange(m_value, adopted)) old->Release();
  }

  // Hands the reference to the caller, which must release it.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(m_value, nullptr); }

  T* Get() const noexcept { return m_value; }
  T* operator->() const noexcept { return m_value; }
  T& operator*() const noexcept { return *m_value; }
  explicit operator bool() const noexcept { return m_value != nullptr; }

 private:
  T* m_value = nullptr;
};

}  // namespace Vask
