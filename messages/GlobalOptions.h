#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// The settings of the main process, first version. The main process defines their
// meaning and units; no number has a range.
struct GlobalOptions {
  char m_adminpass[257] = "";
  char m_adminuser[257] = "";
  char m_fromemail[257] = "";
  char m_fromname[257] = "";
  char m_notifyemail[257] = "";
  char m_smtpusername[257] = "";
  char m_smtppassword[257] = "";
  char m_smtpserver[257] = "";
  std::int32_t m_reconnecttimeout = 0;
  std::int32_t m_emailonerror = 0;
  std::int32_t m_httpport = 0;
  std::int32_t m_httpsport = 0;
  std::int32_t m_smtpserverport = 0;
  std::int32_t m_streamserverport = 0;
  std::int32_t m_usessl = 0;
  std::int32_t m_waitintervalsec = 0;
};

template <>
struct Description<GlobalOptions> {
  static constexpr Field kRows[] = {
      Text<&GlobalOptions::m_adminpass>("adminpass"),
      Text<&GlobalOptions::m_adminuser>("adminuser"),
      Text<&GlobalOptions::m_fromemail>("fromemail"),
      Text<&GlobalOptions::m_fromname>("fromname"),
      Text<&GlobalOptions::m_notifyemail>("notifyemail"),
      Text<&GlobalOptions::m_smtpusername>("smtpusername"),
      Text<&GlobalOptions::m_smtppassword>("smtppassword"),
      Text<&GlobalOptions::m_smtpserver>("smtpserver"),
      Integer<&GlobalOptions::m_reconnecttimeout>("reconnecttimeout"),
      Integer<&GlobalOptions::m_emailonerror>("emailonerror"),
      Integer<&GlobalOptions::m_httpport>("httpport"),
      Integer<&GlobalOptions::m_httpsport>("httpsport"),
      Integer<&GlobalOptions::m_smtpserverport>("smtpserverport"),
      Integer<&GlobalOptions::m_streamserverport>("streamserverport"),
      Integer<&GlobalOptions::m_usessl>("usessl"),
      Integer<&GlobalOptions::m_waitintervalsec>("waitintervalsec"),
  };
};

inline bool DecodeStruct_GlobalOptions(const Vask::JsonObject& object, GlobalOptions& record) {
  return Decode(object, record);
}

// Changes any of the settings of GlobalOptions. An absent field stays empty or 0; a
// receiver cannot tell it from a field that was sent with that value.
struct UpdateGlobalOptions : GlobalOptions {};

template <>
struct Description<UpdateGlobalOptions> {
  static constexpr Presence kPresence = Presence::Optional;
  static constexpr auto& kRows = Description<GlobalOptions>::kRows;
};

inline bool DecodeStruct_UpdateGlobalOptions(const Vask::JsonObject& object,
                                             UpdateGlobalOptions& record) {
  return Decode(object, record);
}

}  // namespace Messages
