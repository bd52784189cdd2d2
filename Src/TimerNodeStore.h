#pragma once

#include <cstdint>

#include "Src/ITimerServiceClient.h"

namespace Vask {

// One timer. All zeros until it is used.
struct TimerNode {
  TimerNode* next = nullptr;
  std::uint64_t dueMs = 0;  // on the timer service's own clock
  std::uint32_t periodMs = 0;
  std::uint32_t timerId = 0;
  std::uint64_t parameter = 0;
  ITimerServiceClient* client = nullptr;
};

// Where timers come from: blocks that are kept until the store goes. Once it has
// seen the most timers there ever are at a time, it allocates no more. Not
// thread-safe: the timer service's lock guards it.
class TimerNodeStore {
 public:
  static constexpr std::uint32_t kNodesPerBlock = 32;

  TimerNodeStore() = default;
  ~TimerNodeStore();
  TimerNodeStore(const TimerNodeStore&) = delete;
  TimerNodeStore& operator=(const TimerNodeStore&) = delete;

  // A node with any contents. It stays the store's property and may be used
  // until it is given back.
  [[nodiscard]] TimerNode* Take();
  void GiveBack(TimerNode* node) noexcept;

  [[nodiscard]] std::uint32_t BlockCount() const noexcept { return m_blockCount; }

 private:
  struct Block {
    Block* next = nullptr;
    TimerNode nodes[kNodesPerBlock];
  };

  void AddBlock();

  Block* m_blocks = nullptr;
  TimerNode* m_free = nullptr;
  std::uint32_t m_blockCount = 0;
};

}  // namespace Vask
