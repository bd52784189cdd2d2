#include "json/Json.h"

namespace Vask {

constinit Json::Counter Json::s_constructed{0};
constinit Json::Counter Json::s_destroyed{0};

Json* Json::TakeChild() noexcept {
  return nullptr;
}

// Nearly every message is read, looked at and dropped. Then the root holds all other
// values of its text, nobody else holds one, and none has anything outside their
// memory: they go together, without a walk over the tree. False: one by one.
bool Json::VanishWithText() noexcept {
  ValueMemory::Text text(this);
  if (text.Empty()) return false;
  const auto isHeldOnce = [](void* value) { return static_cast<Json*>(value)->IsHeldOnce(); };
  if (!text.All(isHeldOnce)) return false;
  Count(s_destroyed, text.GiveBack());
  return true;
}

void Json::ReleaseChildren() noexcept {
  if (VanishWithText()) return;
  ValueMemory::Returns returns;
  Json* dying = this;
  for (;;) {
    Json* child = dying->TakeChild();
    if (child != nullptr) {
      if (!child->DropReference()) continue;
      child->m_around = dying;
      dying = child;
      if (child->m_holdsValues) continue;
    }
    if (dying == this) return;
    Json* around = dying->m_around;
    dying->~Json();  // holds nothing any more, so this does not walk again
    returns.Add(dying);
    dying = around;
  }
}

}  // namespace Vask
