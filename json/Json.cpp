#include "json/Json.h"

namespace Vask {

constinit Json::Counter Json::s_constructed{0};
constinit Json::Counter Json::s_destroyed{0};

Json* Json::TakeChild() noexcept {
  return nullptr;
}

void Json::ReleaseChildren() noexcept {
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
