#include "Src/ErrReporter.h"

#include <cstdarg>
#include <cstdio>

namespace Vask {

void IOnError::Report(IOnError* sink, const char* format, ...) {
  if (sink == nullptr) return;
  char text[kReportCapacity];
  std::va_list arguments;
  va_start(arguments, format);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): false alarm, va_start is above
  static_cast<void>(std::vsnprintf(text, sizeof text, format, arguments));
  va_end(arguments);
  sink->OnError(nullptr, text);
}

void ErrReporter::OnError(Json* /*message*/, const char* text) {
  LogPrinter::Instance().Error("%s\n", text);
}

}  // namespace Vask
