#include "Src/TimerNodeStore.h"

namespace Vask {

TimerNodeStore::~TimerNodeStore() {
  while (m_blocks != nullptr) {
    Block* const block = m_blocks;
    m_blocks = block->next;
    delete block;
  }
}

TimerNode* TimerNodeStore::Take() {
  if (m_free == nullptr) AddBlock();
  TimerNode* const node = m_free;
  m_free = node->next;
  return node;
}

void TimerNodeStore::GiveBack(TimerNode* node) noexcept {
  node->next = m_free;
  m_free = node;
}

void TimerNodeStore::AddBlock() {
  auto* const block = new Block;
  block->next = m_blocks;
  m_blocks = block;
  ++m_blockCount;
  for (std::uint32_t i = kNodesPerBlock; i > 0; --i) GiveBack(&block->nodes[i - 1]);
}

}  // namespace Vask
