#pragma once

#include <atomic>
#include <cstdint>

namespace Vask {

// The base of all objects that are shared by reference count. An object lives on the
// heap, starts with one reference that belongs to its creator, and is deleted by the
// Release of the last reference.
//
// Any thread that holds a reference may call AddRef and Release. This does not protect
// what a derived class adds.
class RefCount3 {
 public:
  RefCount3(const RefCount3&) = delete;
  RefCount3& operator=(const RefCount3&) = delete;

  // Adds a reference. Each AddRef needs one Release.
  void AddRef() noexcept { m_refCount.fetch_add(1, std::memory_order_relaxed); }

  // Drops a reference. The last one deletes the object, so the caller must not touch
  // it afterwards. Never fails and never allocates.
  void Release() noexcept {
    if (DropReference()) delete this;
  }

  // The number of references at this moment. Exact only while no other thread adds or
  // drops one. For tests and diagnostics.
  std::int32_t RefCount() const noexcept { return m_refCount.load(std::memory_order_relaxed); }

 protected:
  explicit RefCount3(bool deleteWhenUnreferenced = true) noexcept
      : m_deleteWhenUnreferenced(deleteWhenUnreferenced), m_refCount(1) {}
  virtual ~RefCount3() = default;

  // If an object was made with `deleteWhenUnreferenced` false, the release of its last
  // reference calls this instead of the deletion. Does nothing here.
  virtual void OnLastRelease() noexcept {}

  // The counting half of Release. Returns true if the caller must delete the object.
  //
  // A caller that reads a count of one holds the only reference, so no other thread can
  // change the count. This case needs no locked instruction, and it is the case of nearly
  // every value of a message.
  bool DropReference() noexcept {
    if (m_refCount.load(std::memory_order_acquire) != 1 &&
        m_refCount.fetch_sub(1, std::memory_order_acq_rel) > 1) {
      return false;
    }
    if (m_deleteWhenUnreferenced) return true;
    m_refCount.store(0, std::memory_order_relaxed);
    OnLastRelease();
    return false;
  }

 private:
  bool m_deleteWhenUnreferenced;
  std::atomic<std::int32_t> m_refCount;
};

}  // namespace Vask
