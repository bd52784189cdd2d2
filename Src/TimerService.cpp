#include "Src/TimerService.h"

#include <algorithm>

#include "Src/LogPrinter.h"

namespace Vask {

namespace {

// A repeated timer is due this much early, so that late wake-ups do not add up from
// call to call.
constexpr std::uint32_t kWakeUpAllowanceMs = 5;

std::uint32_t RepeatPeriod(std::uint32_t periodMs) noexcept {
  return periodMs > kWakeUpAllowanceMs ? periodMs - kWakeUpAllowanceMs : periodMs;
}

}  // namespace

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

void TimerNodeStore::PutBack(TimerNode* node) noexcept {
  node->next = m_free;
  m_free = node;
}

void TimerNodeStore::AddBlock() {
  auto* const block = new Block;
  block->next = m_blocks;
  m_blocks = block;
  ++m_blockCount;
  for (std::uint32_t i = kNodesPerBlock; i > 0; --i) PutBack(&block->nodes[i - 1]);
}

TimerService::TimerService(Platform::Clock& clock, Platform::Threading& threading)
    : ThreadClass(threading), m_wake(Platform::EventReset::Automatic, threading), m_clock(clock) {}

TimerService::~TimerService() {
  StopService();
}

bool TimerService::StartService() {
  if (HasThread() || !m_wake.Ensure()) return false;
  m_running.store(true, std::memory_order_relaxed);
  return Start();
}

void TimerService::StopService() {
  Stop();
}

void TimerService::OnStop() {
  m_running.store(false, std::memory_order_relaxed);
  m_wake.Set();
}

void TimerService::SetTimer(std::uint32_t periodMs, ITimerServiceClient* client) {
  const Platform::CriticalSectionLock lock(m_lock);
  TimerNode* const node = m_nodes.Take();  // may throw, so it comes first
  RemoveUnnamed(client);
  Add(node, periodMs, client);
}

void TimerService::KillTimer(ITimerServiceClient* client) {
  const Platform::CriticalSectionLock lock(m_lock);
  RemoveAll(client);
}

bool TimerService::KillTimerIf(ITimerServiceClient* client, bool (*condition)(void* context),
                               void* context) {
  const Platform::CriticalSectionLock lock(m_lock);
  if (!condition(context)) return false;
  RemoveAll(client);
  return true;
}

void TimerService::ReplaceTimerAnd(std::uint32_t periodMs, ITimerServiceClient* client,
                                   void (*change)(void* context), void* context) {
  const Platform::CriticalSectionLock lock(m_lock);
  TimerNode* const node = m_nodes.Take();  // may throw, so it comes first
  RemoveAll(client);
  Add(node, periodMs, client);
  change(context);
}

void TimerService::Run() {
  std::uint32_t timeoutMs = 0;
  for (;;) {
    static_cast<void>(m_wake.Wait(timeoutMs));  // woken or timed out: look in both cases
    if (!m_running.load(std::memory_order_relaxed)) return;
    timeoutMs = StepGuarded();
  }
}

// A client that throws loses only this call, because its timer is armed already.
std::uint32_t TimerService::StepGuarded() noexcept {
  try {
    return Step();
  } catch (...) {
    LogPrinter::Instance().Error("Vask::TimerService::Run: exception!\n");
    return 0;
  }
}

std::uint32_t TimerService::Step() {
  std::uint64_t nowMs = 0;
  TimerNode due;
  {
    const Platform::CriticalSectionLock lock(m_lock);
    nowMs = Now();
    if (m_first == nullptr || m_first->dueMs > nowMs) return WaitFrom(nowMs);
    due = TakeFirstAndRearm();
  }
  due.client->OnTimer(due.timerId, due.parameter);
  const Platform::CriticalSectionLock lock(m_lock);
  return WaitFrom(nowMs);
}

// The system's tick, continued past its wrap. While there are timers the service reads
// it often enough, because no timer is due later than one wrap from now.
std::uint64_t TimerService::Now() {
  const std::uint32_t tick = m_clock.TickMs();
  if (tick < m_lastTick) m_tickExtension += std::uint64_t{1} << 32;
  m_lastTick = tick;
  return m_tickExtension + tick;
}

void TimerService::Add(TimerNode* node, std::uint32_t periodMs, ITimerServiceClient* client) {
  *node =
      TimerNode{.dueMs = Now() + periodMs, .periodMs = RepeatPeriod(periodMs), .client = client};
  Insert(node);
  m_wake.Set();
}

// Inserts ahead of the timers that are due at the same moment.
void TimerService::Insert(TimerNode* node) {
  TimerNode** link = &m_first;
  while (*link != nullptr && (*link)->dueMs < node->dueMs) link = &(*link)->next;
  node->next = *link;
  *link = node;
}

// Returns a copy, because the call that follows may kill the node and have it used
// again. The timer is armed before that call, so that the call can kill it.
TimerNode TimerService::TakeFirstAndRearm() {
  TimerNode* const node = m_first;
  m_first = node->next;
  node->dueMs = Now() + node->periodMs;
  Insert(node);
  m_wake.Set();
  return *node;
}

void TimerService::RemoveUnnamed(ITimerServiceClient* client) {
  TimerNode** link = &m_first;
  while (*link != nullptr && ((*link)->client != client || (*link)->timerId != 0)) {
    link = &(*link)->next;
  }
  TimerNode* const node = *link;
  if (node == nullptr) return;
  *link = node->next;
  m_nodes.PutBack(node);
}

void TimerService::RemoveAll(ITimerServiceClient* client) {
  TimerNode** link = &m_first;
  while (TimerNode* const node = *link) {
    if (node->client == client) {
      *link = node->next;
      m_nodes.PutBack(node);
    } else {
      link = &node->next;
    }
  }
}

std::uint32_t TimerService::WaitFrom(std::uint64_t nowMs) const {
  if (m_first == nullptr) return Platform::kInfinite;
  if (m_first->dueMs <= nowMs) return 0;
  // The longest period must not mean "wait for ever".
  constexpr std::uint64_t kLongestWait = Platform::kInfinite - 1;
  return static_cast<std::uint32_t>(std::min(m_first->dueMs - nowMs, kLongestWait));
}

}  // namespace Vask
