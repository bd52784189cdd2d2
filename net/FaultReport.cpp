#include "net/FaultReport.h"

#include <cstdarg>
#include <cstdio>

#include "Src/IOnError.h"

namespace Vask {

void ReportFault(IOnError* sink, const char* format, ...) {
  if (sink == nullptr) return;
  char text[kFaultReportBytes];
  va_list arguments;
  va_start(arguments, format);
  (void)std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  sink->OnError(nullptr, text);
}

}  // namespace Vask
