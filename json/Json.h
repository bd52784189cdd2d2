#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

#include "json/RefCount3.h"
#include "json/ValueMemory.h"

namespace Vask {

// What a value is; readers ask Type() first and cast afterwards.
enum class JsonType : int { Object = 1, Array = 2, String = 3, Number = 4, Bool = 5, Null = 6 };

// One value of a JSON text: the base of JsonObject, JsonArray, JsonString,
// JsonNumber, JsonBool and JsonNull. A message is a tree of them, and each
// container holds one reference to every value in it.
//
// References may be given back from any thread. Everything else (filling,
// reading, writing) is unsynchronised: one thread at a time works on a tree.
// Stack use never follows the depth of a tree: neither writing nor releasing
// recurses. Making a value or writing may throw std::bad_alloc, which leaves
// the tree as it was; releasing allocates nothing.
class Json : public RefCount3 {
 public:
  [[nodiscard]] virtual JsonType Type() const noexcept = 0;

  // Replaces `out` by the compact text, the form that goes over the link.
  virtual void Write(std::string& out) const = 0;

  // Replaces `out` by the indented text, for display. Two blanks for each of
  // `indentLevel` levels stand before a container's members and closing
  // bracket, one level more before the members; nothing before the first
  // character. Keys are not escaped in this form.
  virtual void WritePretty(std::string& out, std::uint32_t indentLevel) const = 0;

  // Values made and values deleted since the process began; both wrap at 2^32
  // and are never reset. They are a leak statistic without synchronisation:
  // exact while one thread at a time makes and releases values, while counts
  // may get lost when several do.
  static std::uint32_t Constructed() noexcept { return Read(s_constructed); }
  static std::uint32_t Destroyed() noexcept { return Read(s_destroyed); }

  // The container around this one, as who builds the tree has set it: so he needs
  // no stack of his own. Undefined before, and once anything is released.
  Json* Around() const noexcept { return m_around; }
  void SetAround(Json* container) noexcept { m_around = container; }

  // Where a new value goes: into `memory` (null: the heap), with `bytes` of room
  // behind it for its text. Derived classes hide the latter behind factories.
  struct Place {
    ValueMemory* memory;
    std::size_t bytes;
  };
  static void* operator new(std::size_t size) { return ValueMemory::TakeAlone(size); }
  static void* operator new(std::size_t size, Place place) {
    size += place.bytes;
    return place.memory != nullptr ? place.memory->Take(size) : ValueMemory::TakeAlone(size);
  }
  static void operator delete(void* value) noexcept { ValueMemory::Free(value); }
  static void operator delete(void* value, Place) noexcept { ValueMemory::Free(value); }

 protected:
  explicit Json(bool holdsValues = false) noexcept : m_holdsValues(holdsValues) {
    Count(s_constructed);
  }
  ~Json() override { Count(s_destroyed); }

  // A container's destructor calls this: every value below it is released,
  // members in their order, each with all that it holds before the next; or all
  // at once, where nobody can tell the difference.
  void ReleaseChildren() noexcept;

  // To be called before a value that was parsed is made to hold another one.
  void BreakText() noexcept { ValueMemory::BreakText(this); }

 private:
  bool VanishWithText() noexcept;

  // Takes one value out of a dying container, first to last; null when none is
  // left. The container's reference passes to the caller.
  virtual Json* TakeChild() noexcept;

  using Counter = std::atomic<std::uint32_t>;
  static std::uint32_t Read(const Counter& counter) noexcept {
    return counter.load(std::memory_order_relaxed);
  }
  // Load and store instead of one locked increment: the counters promise no
  // more than plain integers would, and two locked instructions for each value
  // would be a tenth of a message's whole decoding.
  static void Count(Counter& counter, std::uint32_t values = 1) noexcept {
    counter.store(Read(counter) + values, std::memory_order_relaxed);
  }

  static constinit Counter s_constructed;
  static constinit Counter s_destroyed;

  Json* m_around;
  const bool m_holdsValues;  // a container
};

}  // namespace Vask
