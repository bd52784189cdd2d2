#include "messages/ErrorReport.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "Src/ErrReporter.h"
#include "json/Json.h"
#include "json/JsonRef.h"

namespace Messages {

using Vask::Platform::CriticalSectionLock;

namespace {

constinit ErrorReport g_errorReport;

// Holds every text of the codec with a key of common length.
constexpr std::size_t kUsualTextBytes = 512;

}  // namespace

ErrorReport& ErrorReport::Instance() noexcept {
  return g_errorReport;
}

void ErrorReport::SetSink(Vask::IOnError* sink) noexcept {
  m_sink.store(sink, std::memory_order_release);
}

void ErrorReport::Report(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  ReportV(format, arguments);
  va_end(arguments);
}

void ErrorReport::ReportV(const char* format, __builtin_va_list arguments) {
  Vask::IOnError* sink = m_sink.load(std::memory_order_acquire);
  if (sink == nullptr) return;

  va_list again;
  va_copy(again, arguments);
  char usual[kUsualTextBytes];
  const int length = std::vsnprintf(usual, sizeof usual, format, arguments);
  if (length < static_cast<int>(sizeof usual)) {
    Send(*sink, length < 0 ? format : usual);
  } else {
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    Send(*sink, text.c_str());
  }
  va_end(again);
}

void ErrorReport::SetCurrentMessage(Vask::Json* root) noexcept {
  m_current.store(root, std::memory_order_release);
}

void ErrorReport::ClearCurrentMessage() noexcept {
  if (m_current.load(std::memory_order_relaxed) == nullptr) return;
  m_current.store(nullptr);  // in one order with what AddReferenceToCurrent does
  if (m_reporting.load()) const CriticalSectionLock untilItHasItsReference(m_reportingLock);
}

Vask::Json* ErrorReport::AddReferenceToCurrent() {
  const CriticalSectionLock lock(m_reportingLock);
  m_reporting.store(true);
  Vask::Json* current = m_current.load();
  if (current != nullptr) current->AddRef();
  m_reporting.store(false);
  return current;
}

void ErrorReport::Send(Vask::IOnError& sink, const char* text) {
  const Vask::JsonRef<Vask::Json> message(AddReferenceToCurrent());
  sink.OnError(message.Get(), text);
}

}  // namespace Messages
