#include "host/Registration.h"

namespace Host {

const Registry* SystemRegistry() {
  return nullptr;
}

}  // namespace Host
