#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

// Under AddressSanitizer, unused memory of a slab is poisoned like freed memory of the
// heap. Elsewhere these do nothing.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#endif
#endif
#if !defined(ASAN_POISON_MEMORY_REGION)
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address))
#endif

namespace Vask {

// Memory for the values of one text, cut from larger pieces ("slabs"), because the values
// of a message are made and released together: one allocation for all of them instead of
// one each. A slab is freed when the last piece in it is freed, in any order and on any
// thread. One piece that is kept keeps its slab.
//
// A caller that reads one text after the other keeps one object and rewinds it between
// the texts. Then nearly no text allocates. Each piece has a small head that holds its
// origin, so that Free works for pieces of a slab and of the heap.
class ValueMemory {
 public:
  // The size of a slab, heads included. The largest message of a few values fits into it.
  static constexpr std::size_t kSlabBytes = 4096;
  // A piece larger than this has an allocation of its own if it does not fit into the
  // slab.
  static constexpr std::size_t kLargestPiece = 1024;

  ValueMemory() = default;
  ~ValueMemory() { CloseSlab(); }
  ValueMemory(const ValueMemory&) = delete;
  ValueMemory& operator=(const ValueMemory&) = delete;

  // Cuts from the beginning of the slab again, if all its pieces have been freed.
  void Rewind() noexcept;

  // A piece of `bytes`, aligned to 8. Throws std::bad_alloc.
  void* Take(std::size_t bytes) {
    const std::size_t whole = sizeof(Head) + RoundUp(bytes);
    if (whole > m_left) {
      if (bytes > kLargestPiece) return TakeAlone(bytes);
      OpenSlab();
    }
    char* head = reinterpret_cast<char*>(m_slab) + (kSlabBytes - m_left);
    m_left -= whole;
    ++m_pieces;
    ASAN_UNPOISON_MEMORY_REGION(head, sizeof(Head) + bytes);
    const auto offset = static_cast<std::uint32_t>(kSlabBytes - m_left - whole);
    return new (head) Head{offset, static_cast<std::uint32_t>(bytes)} + 1;
  }

  // A piece of the heap that Free accepts, for a value that belongs to no text.
  static void* TakeAlone(std::size_t bytes);

  // From `memory` if there is one, else a piece of the heap.
  static void* Take(ValueMemory* memory, std::size_t bytes) {
    return memory != nullptr ? memory->Take(bytes) : TakeAlone(bytes);
  }

  class Returns;

  // Frees a piece, from either source and on any thread.
  static void Free(void* piece) noexcept;

 private:
  struct Head {
    std::uint32_t slabOffset;  // from the slab's begin to here; 0: of the heap
    std::uint32_t bytes;       // of the piece
  };
  struct Slab {
    // After the slab was closed: the number of pieces in use. Before that: minus the
    // number of freed pieces.
    std::atomic<std::int32_t> inUse{0};
  };

  static constexpr std::size_t kAlignment = 8;
  static constexpr std::size_t RoundUp(std::size_t bytes) noexcept {
    return (bytes + kAlignment - 1) / kAlignment * kAlignment;
  }
  static Slab* SlabOf(Head& head) noexcept {
    return reinterpret_cast<Slab*>(reinterpret_cast<char*>(&head) - head.slabOffset);
  }
  static Head& HeadOf(void* piece) noexcept { return *(static_cast<Head*>(piece) - 1); }
  static void FreeSlab(Slab* slab) noexcept;
  static void Retire(Slab* slab, std::int32_t pieces) noexcept;
  void OpenSlab();
  void CloseSlab() noexcept;

  Slab* m_slab = nullptr;
  std::size_t m_left = 0;     // bytes of the slab
  std::int32_t m_pieces = 0;  // cut from it
};

// Frees pieces for one thread, one after the other, and counts each run of pieces of one
// slab in one step. The destructor does the last step.
class ValueMemory::Returns {
 public:
  Returns() = default;
  ~Returns() { Settle(); }
  Returns(const Returns&) = delete;
  Returns& operator=(const Returns&) = delete;

  void Add(void* piece) noexcept {
    if (!IsInSlab(piece)) [[unlikely]] {
      Head& head = HeadOf(piece);
      if (head.slabOffset == 0) return ::operator delete(&head);
      Settle();
      m_slab = SlabOf(head);
      m_pieces = 0;
    }
    ASAN_POISON_MEMORY_REGION(piece, HeadOf(piece).bytes);
    ++m_pieces;
  }

 private:
  // Does not read the piece, because the pieces of a message usually lie in one slab.
  bool IsInSlab(const void* piece) const noexcept {
    const auto distance =
        reinterpret_cast<std::uintptr_t>(piece) - reinterpret_cast<std::uintptr_t>(m_slab);
    return distance < kSlabBytes;
  }
  void Settle() noexcept {
    if (m_slab != nullptr) Retire(m_slab, m_pieces);
  }

  Slab* m_slab = nullptr;
  std::int32_t m_pieces = 0;
};

}  // namespace Vask
