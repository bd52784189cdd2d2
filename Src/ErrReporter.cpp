#include "Src/ErrReporter.h"

#include "Src/LogPrinter.h"

namespace Vask {

void ErrReporter::OnError(Json* /*message*/, const char* text) {
  LogPrinter::Instance().Error("%s\n", text);
}

}  // namespace Vask
