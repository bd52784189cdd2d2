#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Hostile {

// What of the system can fail for the module.
enum class Fault { Sockets, Files, Threads, Memory };
inline constexpr std::array kFaultNames{"sockets", "files", "threads", "memory"};
inline constexpr std::size_t kFaultCount = kFaultNames.size();

// Which calls of the module fail at present, and what its clocks are off by. One
// for the program, since the functions that look at it have no object; any
// thread.
class FaultSwitch {
 public:
  // From now on one call in `oneIn` of that kind fails, by the luck of `seed`.
  void On(Fault fault, std::uint32_t oneIn, std::uint32_t seed) noexcept {
    m_seed = seed;
    m_oneIn = oneIn;
    m_failing = static_cast<int>(fault);
  }
  void Off() noexcept { m_failing = kNone; }

  // Asked in every call of such a kind.
  [[nodiscard]] bool Strikes(Fault fault) noexcept {
    if (m_failing != static_cast<int>(fault) || Luck() % m_oneIn != 0) return false;
    ++m_struck[static_cast<std::size_t>(fault)];
    return true;
  }

  // How many calls of a kind have failed so far.
  [[nodiscard]] std::size_t Struck(std::size_t fault) const noexcept { return m_struck[fault]; }

  // Added to the time since the epoch, to the time of day, and to the tick.
  std::atomic<std::int64_t> epochShiftSeconds{0};
  std::atomic<std::int64_t> localShiftSeconds{0};
  std::atomic<std::uint32_t> tickShiftMs{0};

 private:
  static constexpr int kNone = -1;

  std::uint32_t Luck() noexcept {
    std::uint32_t luck = m_seed += 0x9E3779B9u;
    luck = (luck ^ luck >> 16) * 0x85EBCA6Bu;
    luck = (luck ^ luck >> 13) * 0xC2B2AE35u;
    return luck ^ luck >> 16;
  }

  std::atomic<int> m_failing{kNone};
  std::atomic<std::uint32_t> m_oneIn{1};
  std::atomic<std::uint32_t> m_seed{0};
  std::array<std::atomic<std::size_t>, kFaultCount> m_struck{};
};

inline constinit FaultSwitch g_faultSwitch;

}  // namespace Hostile
