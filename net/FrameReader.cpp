#include "net/FrameReader.h"

#include "net/FaultReport.h"
#include "net/IOnJsonMessageText.h"

namespace Vask {

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
      ReportFault(m_errorSink, "Vask::JsonSocket::ProcessByteState %d not recognized!", GetState());
      return false;
  }
}

bool FrameReader::ProcessSizeByte(char byte) {
  if (byte >= '0' && byte <= '9') {
    m_remaining = m_remaining * 10 + static_cast<std::uint32_t>(byte - '0');
    return true;
  }
  if (byte != '#') {
    ReportFault(m_errorSink, "Vask::JsonSocket::ProcessByteUnexpected char '%c'", byte);
    m_remaining = 0;
    return false;
  }
  if (m_remaining == 0) {
    ReportFault(m_errorSink, "Vask::JsonSocket::ProcessByteProtocol error. Message size is zero!");
    return false;
  }
  EmptyBody();
  SetState(kReadingBody);
  return true;
}

bool FrameReader::ProcessBodyByte(char byte) {
  // Read as signed: a length of 2^31 and more is none.
  if (static_cast<std::int32_t>(m_remaining) <= 0) {
    ReportFault(m_errorSink, "Vask::JsonSocket::ProcessByteUnexpected state!");
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
