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
    if (Json* child = dying->TakeChild()) {
      if (child->DropReference()) {
        child->m_dyingParent = dying;
        dying = child;
      }
    } else if (dying == this) {
      return;
    } else {
      Json* parent = dying->m_dyingParent;
      dying->~Json();  // holds nothing any more, so this does not walk again
      returns.Add(dying);
      dying = parent;
    }
  }
}

}  // namespace Vask
