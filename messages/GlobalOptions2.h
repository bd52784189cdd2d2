#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// The settings of the main process, second version. The main process defines their
// meaning and units; no number has a range, not even the yes/no settings.
struct GlobalOptions2 {
  char m_adminpass[257] = "";
  std::int32_t m_blankadminpass = 0;
  char m_adminuser[257] = "";
  char m_qxremotepass[257] = "";
  std::int32_t m_blankqxremotepass = 0;
  char m_fromemail[257] = "";
  char m_fromname[257] = "";
  char m_notifyemail[257] = "";
  char m_smtpusername[257] = "";
  char m_smtppassword[257] = "";
  char m_smtpserver[257] = "";
  char m_syslogserver[257] = "";
  char m_streamsfolder[513] = "";
  char m_commonfolder[513] = "";
  char m_tdadapter[65] = "";
  std::int32_t m_reconnecttimeout = 0;
  std::int32_t m_emailonerror = 0;
  std::int32_t m_httpport = 0;
  std::int32_t m_httpsport = 0;
  std::int32_t m_smtpserverport = 0;
  std::int32_t m_streamserverport = 0;
  std::int32_t m_httpresourceserverport = 0;
  std::int32_t m_usessl = 0;
  std::int32_t m_waitintervalsec = 0;
  std::int32_t m_daystokeeplogs = 0;
};

template <>
struct Description<GlobalOptions2> {
  static constexpr Field kRows[] = {
      Text<&GlobalOptions2::m_adminpass>("adminpass"),
      Integer<&GlobalOptions2::m_blankadminpass>("blankadminpass"),
      Text<&GlobalOptions2::m_adminuser>("adminuser"),
      Text<&GlobalOptions2::m_qxremotepass>("qxremotepass"),
      Integer<&GlobalOptions2::m_blankqxremotepass>("blankqxremotepass"),
      Text<&GlobalOptions2::m_fromemail>("fromemail"),
      Text<&GlobalOptions2::m_fromname>("fromname"),
      Text<&GlobalOptions2::m_notifyemail>("notifyemail"),
      Text<&GlobalOptions2::m_smtpusername>("smtpusername"),
      Text<&GlobalOptions2::m_smtppassword>("smtppassword"),
      Text<&GlobalOptions2::m_smtpserver>("smtpserver"),
      Text<&GlobalOptions2::m_syslogserver>("syslogserver"),
      Text<&GlobalOptions2::m_streamsfolder>("streamsfolder"),
      Text<&GlobalOptions2::m_commonfolder>("commonfolder"),
      Text<&GlobalOptions2::m_tdadapter>("tdadapter"),
      Integer<&GlobalOptions2::m_reconnecttimeout>("reconnecttimeout"),
      Integer<&GlobalOptions2::m_emailonerror>("emailonerror"),
      Integer<&GlobalOptions2::m_httpport>("httpport"),
      Integer<&GlobalOptions2::m_httpsport>("httpsport"),
      Integer<&GlobalOptions2::m_smtpserverport>("smtpserverport"),
      Integer<&GlobalOptions2::m_streamserverport>("streamserverport"),
      Integer<&GlobalOptions2::m_httpresourceserverport>("httpresourceserverport"),
      Integer<&GlobalOptions2::m_usessl>("usessl"),
      Integer<&GlobalOptions2::m_waitintervalsec>("waitintervalsec"),
      Integer<&GlobalOptions2::m_daystokeeplogs>("daystokeeplogs"),
  };
};

inline bool DecodeStruct_GlobalOptions2(const Vask::JsonObject& object, GlobalOptions2& record) {
  return Decode(object, record);
}

// Changes any of the settings of GlobalOptions2 except the common folder. An absent
// field stays empty or 0; a receiver cannot tell it from a field that was sent with
// that value.
struct UpdateGlobalOptions2 {
  char m_adminpass[257] = "";
  std::int32_t m_blankadminpass = 0;
  char m_adminuser[257] = "";
  char m_qxremotepass[257] = "";
  std::int32_t m_blankqxremotepass = 0;
  char m_fromemail[257] = "";
  char m_fromname[257] = "";
  char m_notifyemail[257] = "";
  char m_smtpusername[257] = "";
  char m_smtppassword[257] = "";
  char m_smtpserver[257] = "";
  char m_syslogserver[257] = "";
  char m_streamsfolder[513] = "";
  char m_tdadapter[65] = "";
  std::int32_t m_reconnecttimeout = 0;
  std::int32_t m_emailonerror = 0;
  std::int32_t m_httpport = 0;
  std::int32_t m_httpsport = 0;
  std::int32_t m_smtpserverport = 0;
  std::int32_t m_streamserverport = 0;
  std::int32_t m_httpresourceserverport = 0;
  std::int32_t m_usessl = 0;
  std::int32_t m_waitintervalsec = 0;
  std::int32_t m_daystokeeplogs = 0;
};

template <>
struct Description<UpdateGlobalOptions2> {
  static constexpr Presence kPresence = Presence::Optional;
  static constexpr Field kRows[] = {
      Text<&UpdateGlobalOptions2::m_adminpass>("adminpass"),
      Integer<&UpdateGlobalOptions2::m_blankadminpass>("blankadminpass"),
      Text<&UpdateGlobalOptions2::m_adminuser>("adminuser"),
      Text<&UpdateGlobalOptions2::m_qxremotepass>("qxremotepass"),
      Integer<&UpdateGlobalOptions2::m_blankqxremotepass>("blankqxremotepass"),
      Text<&UpdateGlobalOptions2::m_fromemail>("fromemail"),
      Text<&UpdateGlobalOptions2::m_fromname>("fromname"),
      Text<&UpdateGlobalOptions2::m_notifyemail>("notifyemail"),
      Text<&UpdateGlobalOptions2::m_smtpusername>("smtpusername"),
      Text<&UpdateGlobalOptions2::m_smtppassword>("smtppassword"),
      Text<&UpdateGlobalOptions2::m_smtpserver>("smtpserver"),
      Text<&UpdateGlobalOptions2::m_syslogserver>("syslogserver"),
      Text<&UpdateGlobalOptions2::m_streamsfolder>("streamsfolder"),
      Text<&UpdateGlobalOptions2::m_tdadapter>("tdadapter"),
      Integer<&UpdateGlobalOptions2::m_reconnecttimeout>("reconnecttimeout"),
      Integer<&UpdateGlobalOptions2::m_emailonerror>("emailonerror"),
      Integer<&UpdateGlobalOptions2::m_httpport>("httpport"),
      Integer<&UpdateGlobalOptions2::m_httpsport>("httpsport"),
      Integer<&UpdateGlobalOptions2::m_smtpserverport>("smtpserverport"),
      Integer<&UpdateGlobalOptions2::m_streamserverport>("streamserverport"),
      Integer<&UpdateGlobalOptions2::m_httpresourceserverport>("httpresourceserverport"),
      Integer<&UpdateGlobalOptions2::m_usessl>("usessl"),
      Integer<&UpdateGlobalOptions2::m_waitintervalsec>("waitintervalsec"),
      Integer<&UpdateGlobalOptions2::m_daystokeeplogs>("daystokeeplogs"),
  };
};

inline bool DecodeStruct_UpdateGlobalOptions2(const Vask::JsonObject& object,
                                              UpdateGlobalOptions2& record) {
  return Decode(object, record);
}

}  // namespace Messages
