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

// Room for every text of the codec with a key of usual length.
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

  char usual[kUsualTextBytes];
  va_list copy;
  va_copy(copy, arguments);
  const int length = std::vsnprintf(usual, sizeof usual, format, copy);
  va_end(copy);
  if (length < 0) return Send(*sink, format);
  if (length < static_cast<int>(sizeof usual)) return Send(*sink, usual);
  std::string text(static_cast<std::size_t>(length), '\0');
  static_cast<void>(std::vsnprintf(text.data(), text.size() + 1, format, arguments));
  Send(*sink, text.c_str());
}

void ErrorReport::SetCurrentMessage(Vask::Json* root) noexcept {
  m_current.store(root, std::memory_order_release);
}

void ErrorReport::ClearCurrentMessage() noexcept {
  if (m_current.load(std::memory_order_relaxed) == nullptr) return;
  // Sequentially consistent, like the stores and loads of AddReferenceToCurrent.
  m_current.store(nullptr);
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
