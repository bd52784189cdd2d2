#pragma once

#include "Src/LogPrinter.h"

namespace Vask {

class IOnError;

// Tells the sink of a fault of the link: formats printf-style, without
// allocating, and calls OnError with no message. Texts are cut at
// kFaultReportBytes - 1 bytes; the link's own are far shorter. Nothing happens
// without a sink. Any thread; the sink is called on the caller's.
void ReportFault(IOnError* sink, const char* format, ...) VASK_PRINTF_FORMAT(2, 3);

inline constexpr unsigned kFaultReportBytes = 256;

}  // namespace Vask
