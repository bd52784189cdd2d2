#include "json/ValueMemory.h"

namespace Vask {

void* ValueMemory::TakeAlone(std::size_t bytes) {
  return new (::operator new(sizeof(Head) + bytes)) Head{0, static_cast<std::uint32_t>(bytes)} + 1;
}

void ValueMemory::Free(void* piece) noexcept {
  Returns().Add(piece);
}

void ValueMemory::OpenSlab() {
  void* memory = ::operator new(kSlabBytes);
  CloseSlab();
  m_slab = new (memory) Slab;
  m_left = kSlabBytes - kAlignment;
  m_pieces = 0;
  static_assert(sizeof(Slab) <= kAlignment);
  ASAN_POISON_MEMORY_REGION(static_cast<char*>(memory) + kAlignment, m_left);
}

void ValueMemory::Rewind() noexcept {
  // If all pieces have been freed, no thread can touch the slab any more.
  if (m_slab == nullptr) return;
  if (m_slab->inUse.load(std::memory_order_acquire) + m_pieces != 0) return;
  m_slab->inUse.store(0, std::memory_order_relaxed);
  m_left = kSlabBytes - kAlignment;
  m_pieces = 0;
}

void ValueMemory::CloseSlab() noexcept {
  if (m_slab == nullptr) return;
  const std::int32_t before = m_slab->inUse.fetch_add(m_pieces, std::memory_order_acq_rel);
  if (before + m_pieces == 0) FreeSlab(m_slab);
  m_slab = nullptr;
}

// If the count equals the number of pieces that the caller frees, these are the last
// ones, and no locked instruction is necessary.
void ValueMemory::Retire(Slab* slab, std::int32_t pieces) noexcept {
  if (slab->inUse.load(std::memory_order_acquire) == pieces ||
      slab->inUse.fetch_sub(pieces, std::memory_order_acq_rel) == pieces) {
    FreeSlab(slab);
  }
}

void ValueMemory::FreeSlab(Slab* slab) noexcept {
  ASAN_UNPOISON_MEMORY_REGION(slab, kSlabBytes);
  ::operator delete(slab);
}

}  // namespace Vask
