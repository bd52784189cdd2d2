#pragma once

#include "Src/IOnError.h"

namespace Vask {

// Turns every reported fault into one error line of the log. Has no state; any
// thread may use it.
class ErrReporter final : public IOnError {
 public:
  void OnError(Json* message, const char* text) override;
};

}  // namespace Vask
