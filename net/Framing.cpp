#include "net/Framing.h"

#include <cstdio>

#include "Src/ErrReporter.h"
#include "net/LinkInterfaces.h"

namespace Vask {

void AppendFrame(std::string& out, std::string_view body) {
  char prefix[16];  // ten digits, '#' and the terminating zero
  static_cast<void>(
      std::snprintf(prefix, sizeof prefix, "%u#", static_cast<unsigned>(body.size())));
  out += prefix;
  out += body;
}

void FrameReader::Begin() {
  m_remaining = 0;
  EmptyBody();
  SetState(kReadingSize);
}

void FrameReader::End() {
  m_remaining = 0;
  EmptyBody();
  SetState(kDisconnected);
}

bool FrameReader::ProcessByte(char byte) {
  switch (GetState()) {
    case kReadingSize:
      return ProcessSizeByte(byte);
    case kReadingBody:
      return ProcessBodyByte(byte);
    default:
      IOnError::Report(m_errorSink, "Vask::JsonSocket::ProcessByteState %d not recognized!",
                       GetState());
      return false;
  }
}

bool FrameReader::ProcessSizeByte(char byte) {
  if (byte >= '0' && byte <= '9') {
    m_remaining = m_remaining * 10 + static_cast<std::uint32_t>(byte - '0');
    return true;
  }
  if (byte != '#') {
    IOnError::Report(m_errorSink, "Vask::JsonSocket::ProcessByteUnexpected char '%c'", byte);
    m_remaining = 0;
    return false;
  }
  if (m_remaining == 0) {
    IOnError::Report(m_errorSink,
                     "Vask::JsonSocket::ProcessByteProtocol error. Message size is zero!");
    return false;
  }
  EmptyBody();
  SetState(kReadingBody);
  return true;
}

bool FrameReader::ProcessBodyByte(char byte) {
  // Taken as signed: a length of 2^31 or more is invalid.
  if (static_cast<std::int32_t>(m_remaining) <= 0) {
    IOnError::Report(m_errorSink, "Vask::JsonSocket::ProcessByteUnexpected state!");
    EmptyBody();
    SetState(kReadingSize);
    return false;
  }
  m_body.push_back(byte);
  --m_remaining;
  if (m_remaining == 0) Deliver();
  return true;
}

void FrameReader::Deliver() {
  if (m_listener != nullptr) m_listener->OnJsonMessageText(m_body.c_str());
  EmptyBody();
  SetState(kReadingSize);
}

void FrameReader::EmptyBody() {
  if (m_body.capacity() > kKeptBodyBytes) {
    std::string().swap(m_body);
  } else {
    m_body.clear();
  }
}

}  // namespace Vask
