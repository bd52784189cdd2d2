#pragma once

#include "messages/Codec.h"
#include "messages/GlobalOptions.h"

namespace Messages {

// Changes any of the settings of GlobalOptions. Absent fields stay empty or 0,
// which a receiver cannot tell from fields that were sent so.
struct UpdateGlobalOptions : GlobalOptions {};

template <>
struct Description<UpdateGlobalOptions> {
  static constexpr char kDecoder[] = "DecodeStruct_UpdateGlobalOptions";
  static constexpr Presence kPresence = Presence::Optional;
  static constexpr auto& kRows = Description<GlobalOptions>::kRows;
};

inline bool DecodeStruct_UpdateGlobalOptions(const Vask::JsonObject& object,
                                             UpdateGlobalOptions& record) {
  return Decode(object, record);
}

}  // namespace Messages
