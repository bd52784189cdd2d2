#include "json/Json.h"

#include <atomic>

namespace Vask {

namespace {

// Load and store instead of one locked increment: the counters promise no more
// than plain integers would, and two locked instructions a value would be a
// tenth of a message's whole decoding.
void Count(std::atomic<std::uint32_t>& counter) noexcept {
  counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

constinit std::atomic<std::uint32_t> s_constructed{0};
constinit std::atomic<std::uint32_t> s_destroyed{0};

}  // namespace

std::uint32_t Json::Constructed() noexcept {
  return s_constructed.load(std::memory_order_relaxed);
}

std::uint32_t Json::Destroyed() noexcept {
  return s_destroyed.load(std::memory_order_relaxed);
}

Json::Json() noexcept {
  Count(s_constructed);
}

Json::~Json() {
  Count(s_destroyed);
}

void Json::ReleaseChildren() noexcept {
  Json* dying = this;
  for (;;) {
    if (Json* child = dying->TakeChild()) {
      if (child->DropReference()) {
        child->m_dyingParent = dying;
        dying = child;
      }
    } else if (dying == this) {
      return;
    } else {
      Json* parent = dying->m_dyingParent;
      delete dying;  // holds nothing any more, so its destructor does not walk
      dying = parent;
    }
  }
}

}  // namespace Vask
