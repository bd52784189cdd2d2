#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

#include "json/RefCount3.h"
#include "json/ValueMemory.h"

namespace Vask {

// What a value is. A reader asks Type() first and casts afterwards.
enum class JsonType : std::uint8_t {
  Object = 1,
  Array = 2,
  String = 3,
  Number = 4,
  Bool = 5,
  Null = 6
};

// One value of a JSON text: the base of JsonObject, JsonArray, JsonString,
// JsonNumber, JsonBool and JsonNull. A message is a tree of them, and each
// container holds one reference to every value in it.
//
// Any thread may release a reference. Everything else (filling, reading, writing) is
// unsynchronised: only one thread at a time may use a tree. Writing and releasing do not
// recurse, so the use of the stack does not grow with the depth of a tree. Making a value
// and writing may throw std::bad_alloc, and then leave the tree as it was. Releasing
// allocates nothing.
class Json : public RefCount3 {
 public:
  [[nodiscard]] JsonType Type() const noexcept { return m_type; }

  // Replaces `out` by the compact text, the form that goes over the link.
  virtual void Write(std::string& out) const = 0;

  // Replaces `out` by the indented text, for display. A level is two blanks. A
  // container's closing bracket is indented by `indentLevel` levels, and its members by
  // one level more. The first character is not indented. Keys are not escaped in this
  // form.
  virtual void WritePretty(std::string& out, std::uint32_t indentLevel) const = 0;

  // The values made and the values deleted since the process began. Both wrap at 2^32 and
  // are never reset. They are a leak statistic without synchronisation: exact if one
  // thread at a time makes and releases values. If several threads do so at once, counts
  // may be lost.
  static std::uint32_t Constructed() noexcept { return Read(s_constructed); }
  static std::uint32_t Destroyed() noexcept { return Read(s_destroyed); }

  // For the parser, which therefore needs no stack of its own: the container around this
  // value, and whether that container holds this value. Undefined after a release.
  Json* Around() const noexcept { return m_around; }
  bool IsHeldByAround() const noexcept { return m_isHeldByAround; }
  void SetAround(Json* container, bool isHeld) noexcept {
    m_around = container;
    m_isHeldByAround = isHeld;
  }

  // Where a new value goes: into `memory` (null: the heap), with `bytes` of room behind
  // it for its text. Derived classes hide `bytes` behind factories.
  struct Place {
    ValueMemory* memory;
    std::size_t bytes;
  };
  static void* operator new(std::size_t size) { return ValueMemory::TakeAlone(size); }
  static void* operator new(std::size_t size, Place place) {
    return ValueMemory::Take(place.memory, size + place.bytes);
  }
  static void operator delete(void* value) noexcept { ValueMemory::Free(value); }
  static void operator delete(void* value, Place) noexcept { ValueMemory::Free(value); }

  // `delete` destroys a value and releases every value below it. It releases the members
  // in their order, each with everything that it holds before the next. A destructor does
  // not do this, because it would call itself for every level of a tree.
  static void operator delete(Json* value, std::destroying_delete_t) noexcept;

 protected:
  explicit Json(JsonType type) noexcept : m_type(type) { Count(s_constructed); }
  ~Json() override { Count(s_destroyed); }

  // Releases one child of a container that is being deleted. True if `child` is
  // itself a container that must be deleted now.
  static bool ReleaseChild(Json* child, ValueMemory::Returns& returns) noexcept {
    if (!child->DropReference()) return false;
    if (child->m_type <= JsonType::Array) return true;
    if (child->m_type <= JsonType::Null) {
      Count(s_destroyed);  // a scalar has nothing else to destroy
    } else {
      child->~Json();
    }
    returns.Add(child);
    return false;
  }

 private:
  // Releases the children of a value that is being deleted, first to last, up to the
  // first child for which ReleaseChild is true. Returns that child, or null after the
  // last one. Passes freed memory to `returns`.
  static Json* ReleaseChildren(Json* value, ValueMemory::Returns& returns) noexcept;

  using Counter = std::atomic<std::uint32_t>;
  static std::uint32_t Read(const Counter& counter) noexcept {
    return counter.load(std::memory_order_relaxed);
  }
  // A load and a store instead of one locked increment: the counters promise no more than
  // plain integers would. Two locked instructions for each value would take a tenth of
  // the time in which a whole message is decoded.
  static void Count(Counter& counter) noexcept {
    counter.store(Read(counter) + 1, std::memory_order_relaxed);
  }

  static constinit Counter s_constructed;
  static constinit Counter s_destroyed;

  Json* m_around = nullptr;
  bool m_isHeldByAround = true;
  const JsonType m_type;
};

}  // namespace Vask
