#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Hostile {

// The kinds of system calls that can fail for the module.
enum class Fault { Sockets, Files, Threads, Memory };
inline constexpr std::array kFaultNames{"sockets", "files", "threads", "memory"};
inline constexpr std::size_t kFaultCount = kFaultNames.size();

// Chooses the calls of the module that fail, and shifts its clocks. The program has one
// instance, because the functions that read it have no object. Any thread may use it.
class FaultSwitch {
 public:
  // From now on one call in `oneIn` of this kind fails, at random from `seed`.
  void On(Fault fault, std::uint32_t oneIn, std::uint32_t seed) noexcept {
    m_seed = seed;
    m_oneIn = oneIn;
    m_failing = static_cast<int>(fault);
  }
  void Off() noexcept { m_failing = kNone; }

  // True if this call must fail. Every faulty import asks.
  [[nodiscard]] bool Strikes(Fault fault) noexcept {
    if (m_failing != static_cast<int>(fault) || Luck() % m_oneIn != 0) return false;
    ++m_struck[static_cast<std::size_t>(fault)];
    return true;
  }

  // The number of calls of a kind that have failed.
  [[nodiscard]] std::size_t Struck(std::size_t fault) const noexcept { return m_struck[fault]; }

  // Added to the time since the epoch, to the local time, and to the tick count.
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

// Replaces functions of the system in the import table of a loaded module, and of no
// other part of the process. They fail if g_faultSwitch requires it, and otherwise call
// the real function. So the unchanged module can meet any fault. Call this before the
// module has threads; the replacement ends with the unload. Prints the reason and ends
// the program if the module does not import one of these functions.
void PutFaultyImports(void* library);

}  // namespace Hostile
